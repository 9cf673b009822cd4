#include "lsp/MessageStream.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using tarn::tool::MessageStream;
using testing::ElementsAre;

/// The messages and faults in bytes that come in pieces of `size`.
std::vector<std::string> taken(std::string const& bytes, std::size_t size, std::size_t most = 100) {
  MessageStream stream(most);
  std::vector<std::string> result;
  MessageStream::Handlers const handlers{[&](std::string const& message) { result.push_back(message); },
                                         [&](std::string const& reason) { result.push_back("! " + reason); }};
  for (std::size_t i = 0; i < bytes.size(); i += size) stream.take(std::string_view(bytes).substr(i, size), handlers);
  return result;
}

TEST(MessageStream, TakesMessagesApartHoweverTheirBytesCome) {
  std::string const bytes =
      "Content-Length: 2\r\n\r\n{}content-length:4\r\nContent-Type: x\r\n\r\nnullContent-Length: 0\r\n\r\n";
  for (std::size_t const size : {1U, 2U, 7U, 1000U})
    EXPECT_THAT(taken(bytes, size), ElementsAre("{}", "null", "")) << size;
}

TEST(MessageStream, PassesOverAMessageThatIsTooLong) {
  std::string const bytes = "Content-Length: 200\r\n\r\n" + std::string(200, 'x') + "Content-Length: 2\r\n\r\n{}";
  for (std::size_t const size : {1U, 50U, 1000U}) {
    EXPECT_THAT(taken(bytes, size), ElementsAre("! the message has more than 100 bytes", "{}")) << size;
  }
}

TEST(MessageStream, GoesOnAfterHeadersWithoutALength) {
  EXPECT_THAT(taken("Hello: 1\r\n\r\nContent-Length: 2\r\n\r\n[]", 1000),
              ElementsAre("! the message has no header \"Content-Length\" with a number", "[]"));
}

TEST(MessageStream, WritesTheNumberOfBytes) {
  std::ostringstream out;
  tarn::tool::writeMessage(out, "\"\xC3\xA4\"");
  EXPECT_EQ(out.str(), "Content-Length: 4\r\n\r\n\"\xC3\xA4\"");
}

}  // namespace
