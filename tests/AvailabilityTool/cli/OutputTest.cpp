#include "cli/Output.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include "cli/Failure.h"

namespace tarn::tool {
namespace {

/// A disk that has room for so many characters, and then fails with an error of its own each time.
class Disk : public std::streambuf {
 public:
  explicit Disk(std::size_t room) : room_(room) {}
  std::string const& content() const { return content_; }
  int error = ENOSPC;

 protected:
  std::streamsize xsputn(char const* text, std::streamsize count) override {
    std::streamsize written = 0;
    while (written < count && !traits_type::eq_int_type(overflow(text[written]), traits_type::eof())) ++written;
    return written;
  }
  int_type overflow(int_type c) override {
    if (content_.size() == room_) {
      if (error != 0) errno = error;
      return traits_type::eof();
    }
    content_ += traits_type::to_char_type(c);
    return c;
  }

 private:
  std::size_t room_;
  std::string content_;
};

/// A terminal or a file that takes everything, until it is to arrive.
class Unplugged : public std::stringbuf {
 protected:
  int sync() override {
    errno = EIO;
    return -1;
  }
};

std::string failureOf(std::ostream& out) {
  try {
    flushResults(out);
    return "";
  } catch (Failure const& failure) {
    return failure.what();
  }
}

std::string const remedy = "; let its reader read to the end, or write to a file on a disk with free space";

TEST(WriteErrors, WhatIsWrittenArrives) {
  Disk disk(100);
  std::ostream out(&disk);
  WriteErrors const errors(out);
  out << "one " << 'b' << 2 << std::flush;
  out.put('c');
  EXPECT_EQ(failureOf(out), "");
  EXPECT_EQ(disk.content(), "one b2c");
  EXPECT_EQ(errors.first(), 0);
}

TEST(WriteErrors, TheFirstFailureIsToldWhateverFailsAfterIt) {
  Disk disk(3);
  std::ostream out(&disk);
  WriteErrors const errors(out);
  out << "a finding";
  errno = ENOENT;  // a model that was not found
  EXPECT_EQ(failureOf(out), "the standard output cannot be written: No space left on device" + remedy);
  disk.error = EPIPE;
  out.clear();
  out << "another";
  EXPECT_EQ(failureOf(out), "the standard output cannot be written: No space left on device" + remedy);
}

TEST(WriteErrors, AFailureOfASingleCharacterIsTold) {
  Disk disk(0);
  std::ostream out(&disk);
  WriteErrors const errors(out);
  out.put('\n');
  errno = ENOENT;
  EXPECT_EQ(failureOf(out), "the standard output cannot be written: No space left on device" + remedy);
}

TEST(WriteErrors, AFailureToArriveIsTold) {
  Unplugged cable;
  std::ostream out(&cable);
  WriteErrors const errors(out);
  out << "a finding" << std::flush;
  errno = ENOENT;
  EXPECT_EQ(failureOf(out), "the standard output cannot be written: Input/output error" + remedy);
}

TEST(WriteErrors, AFailureWithoutAnErrorIsNotGivenThatOfSomethingBefore) {
  Disk disk(0);
  disk.error = 0;
  std::ostream out(&disk);
  WriteErrors const errors(out);
  errno = ENOENT;
  out << "a finding";
  EXPECT_EQ(failureOf(out), "the standard output cannot be written" + remedy);
}

TEST(WriteErrors, AfterItsEndTheStreamIsAsBefore) {
  Disk disk(100);
  std::ostream out(&disk);
  { WriteErrors const errors(out); }
  EXPECT_EQ(out.rdbuf(), &disk);
}

}  // namespace
}  // namespace tarn::tool
