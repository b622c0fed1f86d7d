// Whether a volume sits on a solid-state drive, and handing a file's
// clusters back to such a drive (file-level TRIM, Windows 8 and later).
// Overwriting reaches what the drive maps to the file, never its spare cells.
#pragma once

#include <cstdint>

#include "common/win.h"

namespace scourel {

enum class Answer { kNo, kYes, kUnknown };

struct DriveKind {
  Answer seekPenalty = Answer::kUnknown;
  Answer trim = Answer::kUnknown;

  // No seek penalty: the drive is solid-state.
  Answer solidState() const {
    return seekPenalty == Answer::kUnknown ? Answer::kUnknown : seekPenalty == Answer::kNo ? Answer::kYes : Answer::kNo;
  }
  bool trimWorthIssuing() const { return solidState() == Answer::kYes && trim == Answer::kYes; }
};

// IOCTL_STORAGE_QUERY_PROPERTY for the seek penalty and TRIM on the volume's
// handle; what fails stays unknown.
DriveKind QueryDriveKind(HANDLE volume);

// FSCTL_FILE_LEVEL_TRIM over the first `length` bytes of an open file; false
// when the system refuses (before Windows 8, or a file system without it).
bool TrimFile(HANDLE file, std::uint64_t length);

const wchar_t* AnswerText(Answer answer);

}  // namespace scourel
