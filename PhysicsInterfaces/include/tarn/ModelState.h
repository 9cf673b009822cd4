#pragma once

#include <map>
#include <string>

namespace tarn {

/// The parameters of one object: name to value, in byte-wise order of the names.
using ObjectState = std::map<std::string, std::string>;

/// The content of a whole model: object path to parameters, in byte-wise order of the paths. The root is the empty
/// path. An entry with an empty map is an object without parameters. Parents need no entry of their own: a path implies
/// all objects above it.
using ModelState = std::map<std::string, ObjectState>;

}  // namespace tarn
