#include "serve/RequestGuard.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

#include <tarn/StringUtilities.h>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

constexpr std::size_t shortestToken = 16;
constexpr std::size_t longestToken = 1000;

bool isTokenCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
         c == '.' || c == '~';
}

/// The value of a cookie in the header `Cookie`.
std::string_view cookieIn(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    std::size_t const end = std::min(header.find(';'), header.size());
    std::string_view pair = header.substr(0, end);
    header.remove_prefix(std::min(end + 1, header.size()));
    pair.remove_prefix(std::min(pair.find_first_not_of(' '), pair.size()));
    if (pair.starts_with(name) && pair.substr(name.size()).starts_with('=')) return pair.substr(name.size() + 1);
  }
  return {};
}

}  // namespace

RequestGuard::RequestGuard(std::string token, std::vector<std::string> hosts, int port)
    : token_(std::move(token)), hosts_(std::move(hosts)), cookieName_("zev-" + std::to_string(port)) {
  // Browsers leave out the usual port.
  if (port == 80) {
    for (std::size_t i = 0, count = hosts_.size(); i < count; ++i) {
      hosts_.push_back(hosts_[i].substr(0, hosts_[i].rfind(':')));
    }
  }
}

bool RequestGuard::isToken(std::string_view text) const noexcept {
  if (text.size() != token_.size()) return false;
  // All characters are compared, so that the time says nothing about how many are right.
  unsigned difference = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    difference |= static_cast<unsigned char>(text[i]) ^ static_cast<unsigned char>(token_[i]);
  }
  return difference == 0;
}

RequestGuard::Verdict RequestGuard::judge(Request const& request) const {
  auto const isHost = [this](std::string_view host) {
    return std::find(hosts_.begin(), hosts_.end(), host) != hosts_.end();
  };
  if (!isHost(request.host)) return Verdict::WrongHost;
  constexpr std::string_view scheme = "http://";
  if (!request.origin.empty() &&
      !(request.origin.starts_with(scheme) && isHost(std::string_view(request.origin).substr(scheme.size())))) {
    return Verdict::WrongOrigin;
  }
  constexpr std::string_view bearer = "Bearer ";
  std::string_view const authorization = request.authorization;
  bool const isKnown = (authorization.starts_with(bearer) && isToken(authorization.substr(bearer.size()))) ||
                       isToken(cookieIn(request.cookie, cookieName_));
  return isKnown ? Verdict::Allowed : Verdict::NoToken;
}

std::string RequestGuard::cookie() const {
  return cookieName_ + '=' + token_ + "; Path=/; HttpOnly; SameSite=Strict";
}

std::string randomToken() {
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr int words = 8;
  constexpr int digitsOfWord = 8;
  std::random_device random;  // the random numbers of the operating system
  std::string token;
  for (int i = 0; i < words; ++i) {
    auto word = random();
    for (int j = 0; j < digitsOfWord; ++j, word >>= 4U) token += digits[word & 15U];
  }
  return token;
}

std::string readToken(std::string const& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) throw Failure("cannot open \"" + file + "\"; give a file with a token");
  if (!S_ISREG(status.st_mode)) throw Failure("\"" + file + "\" is not a file; give a file with a token");
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    throw Failure("other users may use \"" + file + "\"; run: chmod 600 on it, so that the token stays secret");
  }
  std::ifstream stream(file, std::ios::binary);
  std::string token(longestToken + 2, '\0');
  stream.read(token.data(), static_cast<std::streamsize>(token.size()));
  token.resize(static_cast<std::size_t>(stream.gcount()));
  token = StringUtilities::trimmed(token);
  if (token.size() < shortestToken || token.size() > longestToken ||
      !std::all_of(token.begin(), token.end(), isTokenCharacter)) {
    throw Failure("\"" + file + "\" holds no token; a token has " + std::to_string(shortestToken) +
                  " or more letters, digits and characters of \"-_.~\"");
  }
  return token;
}

bool Address::isLoopback() const {
  return host == "127.0.0.1" || host == "::1" || host == "localhost";
}

std::string Address::hostInUrl() const {
  return host.find(':') == std::string::npos ? host : '[' + host + ']';
}

Address readAddress(std::string const& text) {
  Address address;
  std::string_view rest = text;
  std::size_t const colon = rest.rfind(':');
  if (colon != std::string_view::npos) {
    std::string_view host = rest.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
    address.host = host;
    rest.remove_prefix(colon + 1);
  }
  constexpr int mostPort = 65535;
  auto const [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), address.port);
  if (error != std::errc() || end != rest.data() + rest.size() || address.port < 0 || address.port > mostPort ||
      address.host.empty()) {
    throw Failure("\"" + text +
                  "\" is no address; give a port such as 8080, or an address and a port such as "
                  "127.0.0.1:8080");
  }
  return address;
}

}  // namespace tarn::tool
