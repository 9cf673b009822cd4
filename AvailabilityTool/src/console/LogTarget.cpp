#include "console/LogTarget.h"

#include <cerrno>
#include <iostream>
#include <utility>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

/// The standard stream of that name, with the same names as in `ProvTDFLogger`, or the given stream.
std::ostream& streamOf(std::string const& target, std::ostream& file) {
  if (target == "stdout" || target == "cout") return std::cout;
  if (target == "stderr" || target == "cerr") return std::cerr;
  return file;
}

}  // namespace

LogTarget::LogTarget(std::string target) : target_(std::move(target)), out_(streamOf(target_, file_)) {
  if (&out_ != &file_) return;
  errno = 0;
  file_.open(target_, std::ios::app);
  if (!file_) {
    throw Failure("--log: cannot open \"" + target_ + '"' + becauseOf(errno) +
                  "; give stdout, stderr, or the name of a file that can be written");
  }
  errors_.emplace(file_);
}

bool LogTarget::takesMore(std::ostream& err) {
  out_.flush();
  if (out_) {
    isToldAlready_ = false;
    return true;
  }
  isWhole_ = false;
  if (!errors_) return false;
  int const error = errors_->first();
  if (!isToldAlready_) {
    err << "zev: the log \"" << target_ << "\" cannot be written" << becauseOf(error)
        << "; it lacks what was printed last: make room and print it again, or give another file\n";
  }
  isToldAlready_ = true;
  errors_.emplace(file_);
  file_.clear();
  return error != EPIPE;
}

bool LogTarget::finish(std::ostream& err) {
  (void)takesMore(err);
  if (errors_) {
    errors_.reset();
    errno = 0;
    file_.close();
    if (!file_ && isWhole_) {
      err << "zev: the log \"" << target_ << "\" cannot be written to its end" << becauseOf(errno)
          << "; look at what it lacks, and give another file\n";
      isWhole_ = false;
    }
  }
  return isWhole_;
}

}  // namespace tarn::tool
