#pragma once

#include <iosfwd>
#include <string>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>

namespace tarn::workbench {

/// The form of a reference of rules.
enum class ReferenceFormat { Html, Markdown };

/// Writes a reference of a rule database for people, as one document that needs no other file: every object type with
/// its parameters, children and checks, then quantity types, named rules and global checks. It shows descriptions,
/// types, units, allowed values, bounds and defaults; conditions in words and as they are written; and, with links,
/// what each entry depends on and what depends on it. Parameters are shown in the order of the rules, under their
/// groups in order of first appearance.
///
/// The HTML needs no network. A script in it finds entries by a part of their names or texts; without scripts the page
/// is the same except for that. It follows the light or dark scheme of the reader and fits narrow screens.
/// Texts of the rules are escaped, so they are shown as they are and can never become markup. The same rules give the
/// same bytes.
///
/// `title` is the heading; when it is empty, the root types make one. Linear in the size of the rules and the number of
/// their dependencies, see `RuleDependencies`.
TARN_EXPORT void writeRuleReference(std::ostream& out, PhysicsData const& rules, ReferenceFormat format,
                                    std::string const& title = {});

}  // namespace tarn::workbench
