#include "wipe/solid_state.h"

#include <winioctl.h>

namespace scourel {

namespace {

// From the Windows 8 headers, which the 7 target leaves out.
constexpr int kSeekPenaltyProperty = 7;  // StorageDeviceSeekPenaltyProperty
constexpr int kTrimProperty = 8;         // StorageDeviceTrimProperty
constexpr DWORD kFileLevelTrim = CTL_CODE(FILE_DEVICE_FILE_SYSTEM, 130, METHOD_BUFFERED, FILE_WRITE_DATA);

struct PropertyQuery {
  int propertyId;
  int queryType;  // PropertyStandardQuery
  BYTE additional[1];
};
struct BooleanDescriptor {  // DEVICE_SEEK_PENALTY_DESCRIPTOR, DEVICE_TRIM_DESCRIPTOR
  DWORD version;
  DWORD size;
  BOOLEAN value;
};
struct TrimRange {
  ULONGLONG offset;
  ULONGLONG length;
};
struct TrimInput {
  DWORD key;
  DWORD numRanges;
  TrimRange ranges[1];
};
struct TrimOutput {
  DWORD numRangesProcessed;
};

Answer QueryFlag(HANDLE volume, int property) {
  PropertyQuery query{property, 0, {}};
  BooleanDescriptor descriptor{};
  DWORD returned = 0;
  if (!::DeviceIoControl(volume, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, &descriptor, sizeof descriptor,
                         &returned, nullptr) ||
      returned < sizeof descriptor) {
    return Answer::kUnknown;
  }
  return descriptor.value ? Answer::kYes : Answer::kNo;
}

}  // namespace

DriveKind QueryDriveKind(HANDLE volume) {
  if (volume == nullptr || volume == INVALID_HANDLE_VALUE) return {};
  return {QueryFlag(volume, kSeekPenaltyProperty), QueryFlag(volume, kTrimProperty)};
}

bool TrimFile(HANDLE file, std::uint64_t length) {
  TrimInput input{0, 1, {{0, length}}};
  TrimOutput output{};
  DWORD returned = 0;
  return ::DeviceIoControl(file, kFileLevelTrim, &input, sizeof input, &output, sizeof output, &returned, nullptr) &&
         output.numRangesProcessed == 1;
}

const wchar_t* AnswerText(Answer answer) {
  switch (answer) {
    case Answer::kNo: return L"no";
    case Answer::kYes: return L"yes";
    case Answer::kUnknown: break;
  }
  return L"unknown";
}

}  // namespace scourel
