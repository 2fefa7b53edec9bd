#include "base/runtime_error.h"

namespace torquil {

std::string errorDescription(int number) {
    switch (number) {
    case err::None:
        return "No error";
    case err::InvalidCall:
        return "Invalid procedure call or argument";
    case err::Overflow:
        return "Overflow";
    case err::SubscriptOutOfRange:
        return "Subscript out of range";
    case err::BadFileNameOrNumber:
        return "Bad file name or number";
    case err::FileNotFound:
        return "File not found";
    case err::DiskFull:
        return "Disk full";
    case err::BadRecordNumber:
        return "Bad record number";
    case err::PathFileAccess:
        return "Path/File access error";
    default:
        return "Application-defined or object-defined error";
    }
}

RuntimeError::RuntimeError(int number, const std::string& where)
    : std::runtime_error("Run-time error '" + std::to_string(number) + "': " +
                         errorDescription(number) + (where.empty() ? "" : " (" + where + ")")),
      number_(number) {}

void ErrorState::raise(int number, const std::string& where) {
    if (debugMode_) throw RuntimeError(number, where);
    if (pending_ == err::None) {
        pending_ = number;
        where_ = where;
    }
}

} // namespace torquil
