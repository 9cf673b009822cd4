#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

/// The place of a parameter among the parameters of its object, from 0, where new lines follow an order such as that of
/// the rules. Parameters with the same number are in the order of their names.
using ModelTextOrder = std::function<std::size_t(std::string const& objectPath, std::string const& name)>;

/// Returns model text that gives `state` and is as much like `text` as possible. `TDFChangeFile` describes model text.
///
///     std::string const saved = rewriteModelText(original, session.state());
///
/// Everything that `state` does not change is kept byte for byte: comments, blank lines, the order of lines, the
/// spelling of numbers, indentation, line ends, a byte order mark, and whether items are written line by line or in
/// blocks.
///
/// - A changed value is replaced in its line. If the parameter is given twice, the first line is changed, because that
///   one counts.
/// - A parameter that `state` does not have loses all its lines. An object that `state` does not have loses all its
///   lines and its blocks, with the comments in them. An object exists if `state` has it or something below it.
/// - A new parameter is written next to those of its object, in the form of their lines: after the one that comes
///   before it in `order`, or before the one that comes after it. Without `order`, names are compared byte by byte.
/// - A new object is written as a block at the end of the block of its parent, after the objects of its type. Where the
///   parent has no block, it is written line by line, after the lines of the objects of its type, or of the parent.
///   At the root it is a block if the text has blocks or is empty.
///
/// The result is read to check it. An object without parameters and with objects below it may or may not have an entry
/// there; apart from that and from names that equal their types, which count as no names, the result gives exactly
/// `state`.
///
/// Throws a `ParseError` that names line and column if `text` is malformed. Throws an `Error` that names the first item
/// that text cannot hold: a value with a line end or with white space at its ends, or a name that would be read as
/// something else. Linear in the length of the text and of the state, times the logarithm of the number of objects.
[[nodiscard]] TARN_EXPORT std::string rewriteModelText(std::string_view text, ModelState const& state,
                                                       ModelTextOrder const& order = {});

}  // namespace tarn
