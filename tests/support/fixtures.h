// Test fixtures shared by the areas: scratch folders, planted files, a canary
// tree that must survive every walk and delete, and a scratch registry key.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "common/unique_handle.h"

namespace scourel::test {

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);
bool PathExists(const std::wstring& path);
// Creates the folder and any missing parents.
void MakeDirs(const std::wstring& path);
// Creates the file (and its folder) with exactly these bytes.
void WriteFileBytes(const std::wstring& path, const std::string& bytes);
// At most `limit` bytes from the start; empty when the file cannot be opened.
std::string ReadFileBytes(const std::wstring& path, std::size_t limit = SIZE_MAX);
// Deletes a tree without following links (clears read-only on the way).
void RemoveTree(const std::wstring& path);

// A fresh folder below the sandbox's C:\scourel-tests, removed on destruction.
class ScratchDir {
 public:
  explicit ScratchDir(const std::wstring& name);
  ~ScratchDir() { RemoveTree(path_); }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  const std::wstring& path() const { return path_; }
  std::wstring operator/(const std::wstring& name) const { return JoinPath(path_, name); }

 private:
  std::wstring path_;
};

// A small tree of files with known contents; Intact() compares every byte.
class CanaryTree {
 public:
  explicit CanaryTree(const std::wstring& root);
  const std::wstring& root() const { return root_; }
  // Empty when every file is present with its bytes; otherwise what changed.
  std::wstring Damage() const;

 private:
  std::wstring root_;
  std::map<std::wstring, std::string> files_;
};

// Makes a Unix symbolic link from the host side; Wine shows a link to a
// folder as a reparse point.
bool MakeUnixSymlink(const std::wstring& target, const std::wstring& link);
bool MakeUnixHardLink(const std::wstring& existing, const std::wstring& link);
// Removes a link made from the host side (Wine cannot delete those itself).
void RemoveUnixLink(const std::wstring& link);
// A path of drive C: as the host sees it inside the sandbox's prefix.
std::wstring UnixPath(const std::wstring& windowsPath);
// Runs a shell command on the host; true once `path` exists (appears) or is
// gone (!appears), within the time.
bool RunUnix(const std::wstring& command, const std::wstring& path, bool appears, unsigned timeoutMs = 5000);

// A registry link at root\path (its parents created) naming the key
// HKEY_LOCAL_MACHINE\<machinePath>; false when it could not be made. Remove
// it with the cleaners' own link-safe tree deletion, never RegDeleteTreeW,
// which empties what a link names.
bool MakeRegistryLink(HKEY root, const std::wstring& path, const std::wstring& machinePath);

// HKCU\Software\ScourelTests\<name>, created fresh and deleted afterwards.
class ScratchKey {
 public:
  explicit ScratchKey(const std::wstring& name);
  ~ScratchKey();
  ScratchKey(const ScratchKey&) = delete;
  ScratchKey& operator=(const ScratchKey&) = delete;
  const std::wstring& path() const { return path_; }  // below HKEY_CURRENT_USER
  HKEY key() const { return key_.get(); }

 private:
  std::wstring path_;
  UniqueRegKey key_;
};

// Undoes what a test planted outside its scratch folders when the test ends,
// however it ends: a failed assertion leaves nothing behind for the next test.
class Cleanup {
 public:
  explicit Cleanup(std::function<void()> undo) : undo_(std::move(undo)) {}
  ~Cleanup() { undo_(); }
  Cleanup(const Cleanup&) = delete;
  Cleanup& operator=(const Cleanup&) = delete;

 private:
  std::function<void()> undo_;
};

// Removes each path (files, folders with their contents, host-side links).
inline Cleanup RemovedAtEnd(std::vector<std::wstring> paths) {
  return Cleanup([paths = std::move(paths)] {
    for (const std::wstring& path : paths) RemoveTree(path);
  });
}

// Starts a program, with its standard output and error in the handles given
// (inheritable) or none; empty when it cannot start.
UniqueHandleKernel StartProgram(std::wstring commandLine, HANDLE out = nullptr, HANDLE err = nullptr);
// Waits for the process, ending it when it outlives the time; its exit code or -1.
int WaitAndEnd(HANDLE process, unsigned timeoutMs);
// Runs a program and waits for it; returns its exit code or -1.
int RunAndWait(const std::wstring& commandLine, unsigned timeoutMs = 60000);

// Closes (or ends) every worker window left by an earlier test.
void CloseRunningWorkers();

// The folder of the running test program (build\bin).
std::wstring ProgramDir();
// Copies a program of that folder to <root>\bin\scourel.exe, where as a
// worker it reads <root>\Settings.INI; returns the copy's path.
std::wstring InstallCopy(const std::wstring& root, const std::wstring& program = L"scourel.exe");

}  // namespace scourel::test
