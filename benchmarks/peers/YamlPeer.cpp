// Reads a YAML file with libyaml and discards the content. Loading a rule file with this parser cannot take less time.
//
//     YamlPeer FILE
#include <yaml.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "Peer.h"

namespace {

using namespace tarn::benchmarks;

std::size_t countScalars(std::string const& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error(file + " cannot be read");
  std::string const text(std::istreambuf_iterator<char>(stream), {});
  yaml_parser_t parser;
  if (!yaml_parser_initialize(&parser)) throw std::bad_alloc();
  std::unique_ptr<yaml_parser_t, decltype(&yaml_parser_delete)> const end(&parser, &yaml_parser_delete);
  yaml_parser_set_input_string(&parser, reinterpret_cast<unsigned char const*>(text.data()), text.size());
  std::size_t scalars = 0;
  for (bool more = true; more;) {
    yaml_event_t event;
    if (!yaml_parser_parse(&parser, &event)) throw std::runtime_error(file + " is no YAML");
    scalars += event.type == YAML_SCALAR_EVENT;
    more = event.type != YAML_STREAM_END_EVENT;
    yaml_event_delete(&event);
  }
  return scalars;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 2) throw std::invalid_argument("a file is wanted, and nothing else");
    std::size_t scalars = 0;
    printTime("parse YAML", medianOf([&] { return timed([&] { scalars = countScalars(argv[1]); }); }, 1500));
    if (scalars == 0) throw std::runtime_error("the file holds nothing");
    return 0;
  } catch (std::exception const& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 2;
  }
}
