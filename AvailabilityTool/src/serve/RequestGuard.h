#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::tool {

/// Decides which requests over HTTP are answered. A page of another site can make a browser send requests here, so a
/// request must know the token and come from a page of this server, or from no page at all.
class RequestGuard {
 public:
  /// `hosts` are the names under which clients reach the server, with the port.
  RequestGuard(std::string token, std::vector<std::string> hosts, int port);

  /// The headers of a request. "" for what is not there.
  struct Request {
    std::string host;
    std::string origin;
    std::string authorization;
    std::string cookie;
  };

  enum class Verdict { Allowed, WrongHost, WrongOrigin, NoToken };
  [[nodiscard]] Verdict judge(Request const& request) const;

  /// The value of the header `Set-Cookie` that lets a browser in.
  [[nodiscard]] std::string cookie() const;
  [[nodiscard]] std::string const& token() const noexcept { return token_; }

 private:
  [[nodiscard]] bool isToken(std::string_view text) const noexcept;

  std::string token_;
  std::vector<std::string> hosts_;
  std::string cookieName_;
};

/// 32 random bytes as hexadecimal digits.
[[nodiscard]] std::string randomToken();
/// The token in a file. Throws a `Failure` if it cannot be read, if other users can read it, or if it is too short.
[[nodiscard]] std::string readToken(std::string const& file);

/// "127.0.0.1:8080", "8080", "[::1]:8080".
struct Address {
  std::string host = "127.0.0.1";
  int port = 0;

  /// Only programs on this machine reach it.
  [[nodiscard]] bool isLoopback() const;
  /// As in a URL: in brackets if it has colons.
  [[nodiscard]] std::string hostInUrl() const;
};
/// Throws a `Failure` if the text is no address.
[[nodiscard]] Address readAddress(std::string const& text);

}  // namespace tarn::tool
