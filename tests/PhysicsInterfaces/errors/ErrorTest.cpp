// The base of the exceptions: its getters, and how the whole text is composed.
#include <tarn/Error.h>

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

namespace tarn {
namespace {

class SampleError : public Error {
 public:
  SampleError() = default;
  SampleError(std::string const& name, std::string const& className, std::string const& method,
              std::string const& message)
      : Error(name, className, method, message, errorType::InvalidState, 7) {}
};

TEST(Error, KeepsAllThatItWasMadeOf) {
  SampleError const error("physical_dependency::error", "DynamicTDF", "setParameter", "no such object");
  EXPECT_EQ(error.exceptionName(), "physical_dependency::error");
  EXPECT_EQ(error.getClass(), "DynamicTDF");
  EXPECT_EQ(error.getMethod(), "setParameter");
  EXPECT_EQ(error.getMessage(), "no such object");
  EXPECT_EQ(error.getType(), errorType::InvalidState);
  EXPECT_EQ(static_cast<int>(error.getType()), 4);
  EXPECT_EQ(error.code(), 7);
}

TEST(Error, ComposesNamePlaceAndMessage) {
  EXPECT_EQ(SampleError("family::fault", "DynamicTDF", "setParameter", "no such object").errorMessage(),
            "family::fault in DynamicTDF::setParameter: no such object");
}

TEST(Error, LeavesEmptyPartsOutOfTheComposedText) {
  EXPECT_EQ(SampleError("family::fault", "", "", "no such object").errorMessage(), "family::fault: no such object");
  EXPECT_EQ(SampleError("family::fault", "", "load", "").errorMessage(), "family::fault in load");
  EXPECT_EQ(SampleError("family::fault", "DynamicTDF", "", "gone").errorMessage(), "family::fault in DynamicTDF: gone");
  EXPECT_EQ(SampleError("", "", "", "gone").errorMessage(), "gone");
  EXPECT_EQ(SampleError().errorMessage(), "");
}

TEST(Error, WritesTheComposedTextWithoutALineEnd) {
  SampleError const error("family::fault", "DynamicTDF", "setParameter", "no such object");
  std::ostringstream stream;
  error.write(stream);
  EXPECT_EQ(stream.str(), "family::fault in DynamicTDF::setParameter: no such object");
}

TEST(Error, WritesOfWhatAUserWroteWronglyTheMessageAlone) {
  auto const written = [](Error const& error) {
    std::ostringstream stream;
    error.write(stream);
    return stream.str();
  };
  ParseError const unreadable("TDFChangeFile", "TDFChangeFile", "pipe.tdf:2:1: no \"=\" in the line");
  EXPECT_EQ(written(unreadable), "pipe.tdf:2:1: no \"=\" in the line");
  EXPECT_EQ(unreadable.errorMessage(),
            "tarn::ParseError in TDFChangeFile::TDFChangeFile: pipe.tdf:2:1: no \"=\" in the line");
  EXPECT_EQ(written(FileError("TDFChangeFile", "TDFChangeFile", "pipe.tdf: no such file")), "pipe.tdf: no such file");
  EXPECT_EQ(written(RangeError("TDFPath", "component", "4 of 3")), "tarn::RangeError in TDFPath::component: 4 of 3");
}

TEST(Error, IsSeenByHandlersOfStandardExceptions) {
  std::string what;
  try {
    throw SampleError("family::fault", "DynamicTDF", "setParameter", "no such object");
  } catch (std::exception const& caught) {
    what = caught.what();
  }
  EXPECT_EQ(what, "no such object");
}

TEST(Error, CopiesKeepTheText) {
  SampleError const error("family::fault", "A", "b", "c");
  SampleError copy;
  copy = error;
  EXPECT_EQ(copy.errorMessage(), error.errorMessage());
  EXPECT_STREQ(copy.what(), "c");
}

TEST(Error, ItsKindsTellTheirType) {
  EXPECT_EQ(ParseError("C", "m", "t").getType(), errorType::InvalidInput);
  EXPECT_EQ(ParseError("C", "m", "t").exceptionName(), "tarn::ParseError");
  EXPECT_EQ(RangeError("C", "m", "t").getType(), errorType::InvalidState);
  EXPECT_EQ(RangeError("C", "m", "t").exceptionName(), "tarn::RangeError");
  EXPECT_EQ(FileError("C", "m", "t").getType(), errorType::InputOutput);
  EXPECT_EQ(FileError("C", "m", "t").exceptionName(), "tarn::FileError");
  EXPECT_EQ(AssertionError("x > 0", "f.cpp", 12).getType(), errorType::Assertion);
  EXPECT_EQ(AssertionError("x > 0", "f.cpp", 12).exceptionName(), "tarn::AssertionError");
}

TEST(Error, CannotBeMadeByItself) {
  EXPECT_FALSE((std::is_default_constructible_v<Error>));
}

}  // namespace
}  // namespace tarn
