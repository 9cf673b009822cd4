// The effect of an edit on a screen: numbers first, then a section for each kind of change, the worst first. Folding
// works on lines: what two changes of a section have in common is exactly that their lines below the object are equal.
#include "edit/ResultText.h"

#include <algorithm>
#include <map>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "cli/Counted.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using session::EditResult;
using session::Effect;
using session::Item;
using session::ValueChange;
using session::Waiting;
using session::WaitingChange;
using session::WaitingReason;

/// So many objects with the same change are folded into one line.
constexpr std::size_t leastFolded = 3;
/// A section that is not open has no more lines than these, except for values of the user.
constexpr std::size_t mostLines = 12;

/// One change: what is shown below the path of its object.
struct Entry {
  std::string path;
  std::string line;
  /// A value of the user is at stake: the entry is neither folded nor left out.
  bool isKept = false;
};

struct Part {
  Section section;
  char mark;
  Colour colour;
  std::string title;
  std::vector<Entry> entries;
};

struct SectionInfo {
  std::string_view word;
  char mark;
  Colour colour;
};

SectionInfo infoOf(Section section) noexcept {
  switch (section) {
    case Section::Waiting:
      return {"waiting", '!', Colour::Yellow};
    case Section::Gone:
      return {"gone", '-', Colour::Red};
    case Section::Changed:
      return {"changed", '~', Colour::Cyan};
    case Section::New:
      return {"new", '+', Colour::Green};
    case Section::Objects:
      return {"objects", '+', Colour::Green};
    case Section::Choices:
      return {"choices", '~', Colour::Cyan};
    case Section::Defaults:
      return {"defaults", '~', Colour::Cyan};
    case Section::Bounds:
      return {"bounds", '~', Colour::Cyan};
    case Section::Units:
      return {"units", '~', Colour::Cyan};
    case Section::Offers:
      return {"offers", '~', Colour::Cyan};
  }
  return {"", ' ', Colour::Cyan};
}

/// The room for a value in a line that has two of them.
std::size_t roomForValue(TextLook const& look) {
  if (look.width == 0) return mostShown;
  constexpr std::size_t least = 16;
  return std::max(least, look.width / 3);
}

class ResultWriter {
 public:
  ResultWriter(EditResult const& result, ResultTextOptions const& options) : result_(result), options_(options) {
    for (WaitingChange const& change : result.effect.waiting) waiting_.emplace(change.item, &change);
    for (ValueChange const& change : result.effect.values) {
      if (change.after) present_.insert({change.path, change.name});
      values_.emplace(Item{change.path, change.name}, &change);
    }
    noteRenaming();
    for (std::string const& path : result.effect.objectsCreated) present_.insert({path, std::nullopt});
  }

  std::string text() {
    collect();
    if (options_.only) return onlySection();
    std::string text = verdict();
    for (session::Conversion const& conversion : result_.conversions) {
      text += "  converted: " + value(conversion.from) + " is " + value(conversion.to) + " of " +
              name(conversion.item) + '\n';
    }
    for (session::FollowedReference const& followed : result_.followed) {
      text += "  followed: " + shortened(followed.item.text()) + ": " + value(followed.before) + " -> " +
              value(followed.after) + '\n';
    }
    if (!options_.remark.empty()) text += painted("! " + options_.remark, Colour::Yellow, options_.look) + '\n';
    if (parts_.empty()) return text;
    std::string counts;
    for (Part const& part : parts_) counts += (counts.empty() ? "  " : ", ") + part.title;
    text += counts + '\n';
    addSections(text);
    if (isFolded_ && options_.opener) text += "\"" + options_.opener(std::nullopt) + "\" shows every change\n";
    return text;
  }

 private:
  [[nodiscard]] std::string value(std::string const& text) const {
    return text.empty() ? "(no value)" : shortened(text, roomForValue(options_.look));
  }
  [[nodiscard]] static std::string name(Item const& item) { return shortened(item.name.value_or("")); }

  [[nodiscard]] std::string change(std::string const& before, std::string const& after) const {
    return (before.empty() ? "none" : value(before)) + " -> " + (after.empty() ? "none" : value(after));
  }

  /// The only edit. Null if there are none or several.
  [[nodiscard]] Edit const* only() const {
    return options_.given == 1 && !result_.made.empty() ? &result_.made.front() : nullptr;
  }

  /// Whether the verdict says what became of the parameter.
  [[nodiscard]] bool isInVerdict(std::string const& path, std::string const& name) const {
    Edit const* const edit = only();
    return edit != nullptr && edit->kind == Edit::Kind::SetParam && edit->path == path && edit->name == name;
  }
  [[nodiscard]] bool isObjectInVerdict(std::string const& path) const {
    Edit const* const edit = only();
    if (edit == nullptr) return false;
    switch (edit->kind) {
      case Edit::Kind::AddObject:
      case Edit::Kind::RemoveObject:
      case Edit::Kind::ActivateObject:
      case Edit::Kind::DeactivateObject:
        return edit->path == path;
      default:
        return false;
    }
  }

  // Renaming

  void noteRenaming() {
    for (Edit const& edit : result_.made) {
      if (edit.kind != Edit::Kind::RenameObject) continue;
      std::string const stem = edit.path.substr(0, edit.path.size() - PathUtils::lastName(edit.path).size());
      renamed_.push_back({edit.path, stem + edit.name});
    }
    if (renamed_.empty()) return;
    Effect const& effect = result_.effect;
    for (std::string const& path : effect.objectsCreated) moves_.insert({path, std::nullopt});
    for (std::string const& path : effect.objectsDeleted) moves_.insert({path, std::nullopt});
    for (Item const& item : effect.offersGained) offers_.insert(item);
    for (Item const& item : effect.offersLost) offers_.insert(item);
  }

  /// The item under the other name of an object that was renamed; nothing for items outside of one.
  [[nodiscard]] std::optional<Item> otherName(Item const& item) const {
    for (Renamed const& renamed : renamed_) {
      bool const isOld = PathUtils::isChildPath(renamed.before, item.path);
      if (!isOld && !PathUtils::isChildPath(renamed.after, item.path)) continue;
      std::string const& from = isOld ? renamed.before : renamed.after;
      return Item{(isOld ? renamed.after : renamed.before) + item.path.substr(from.size()), item.name};
    }
    return std::nullopt;
  }

  /// Whether the change is only the other half of a move: the item went under the old name and came under the new one.
  [[nodiscard]] bool isMoved(ValueChange const& change) const {
    for (session::FollowedReference const& followed : result_.followed) {
      if (followed.item == Item{change.path, change.name}) return true;
    }
    auto const other = otherName({change.path, change.name});
    auto const found = other ? values_.find(*other) : values_.end();
    return found != values_.end() && found->second->before == change.after && found->second->after == change.before;
  }
  [[nodiscard]] bool isMoved(std::string const& path) const {
    auto const other = otherName({path, std::nullopt});
    return other && moves_.contains(*other);
  }
  [[nodiscard]] bool isMoved(Item const& offer) const {
    auto const other = otherName(offer);
    return other && offers_.contains(*other);
  }
  [[nodiscard]] bool isMoved(WaitingChange const& change) const {
    auto const other = otherName(change.item);
    auto const found = other ? waiting_.find(*other) : waiting_.end();
    return found != waiting_.end() && change.after && found->second->before &&
           found->second->before->value == change.after->value;
  }

  [[nodiscard]] WaitingChange const* waitingOf(std::string const& path, std::string const& name) const {
    auto const found = waiting_.find({path, name});
    return found == waiting_.end() ? nullptr : found->second;
  }

  std::string verdict() {
    std::string const step = std::to_string(options_.step.value_or(result_.step));
    std::string const number = step == "0" ? "" : ' ' + step;
    Edit const* const edit = only();
    std::string what;
    bool isKept = false;
    if (edit == nullptr) {
      what = result_.made.empty() ? "nothing to do" : counted(options_.given, "edit");
    } else if (edit->kind == Edit::Kind::SetParam) {
      what = ofValue(*edit, isKept);
    } else {
      what = shortened(commandText(*edit));
      for (WaitingChange const& change : result_.effect.waiting) {
        bool const isOfEdit = change.item.path == edit->path &&
                              (change.item.name ? *change.item.name == edit->name : !isOfParam(edit->kind));
        if (!isOfEdit || !change.after || change.before) continue;
        if (isSwitchingOff(edit->kind)) {
          if (change.after->value) what += "; its value " + value(*change.after->value) + " is kept";
          continue;
        }
        what += " waits: " + whyWaiting(*change.after);
        isKept = true;
      }
    }
    if (result_.effect.empty() && !result_.made.empty() && !isKept) what += "; nothing else changes";
    std::string const word = options_.done + number;
    return painted(word, isKept ? Colour::Yellow : Colour::Green, options_.look) + ": " + what + '\n';
  }

  static bool isOfParam(Edit::Kind kind) {
    return kind == Edit::Kind::SetParam || kind == Edit::Kind::ActivateParam || kind == Edit::Kind::DeactivateParam;
  }
  static bool isSwitchingOff(Edit::Kind kind) {
    return kind == Edit::Kind::DeactivateParam || kind == Edit::Kind::DeactivateObject ||
           kind == Edit::Kind::RemoveObject;
  }

  std::string ofValue(Edit const& edit, bool& isKept) const {
    std::string const item = shortened(edit.path + '/' + edit.name);
    ValueChange const* change = nullptr;
    for (ValueChange const& candidate : result_.effect.values) {
      if (candidate.path == edit.path && candidate.name == edit.name) change = &candidate;
    }
    WaitingChange const* const waits = waitingOf(edit.path, edit.name);
    if (waits != nullptr && waits->after && waits->after->value == edit.value) {
      isKept = true;
      std::string text = item + " = " + value(edit.value) + " waits: " + whyWaiting(*waits->after);
      if (change != nullptr && change->after) text += "; it is " + value(*change->after) + " now";
      return text;
    }
    if (change == nullptr) return item + " = " + value(edit.value);
    if (!change->after) return item + ": " + value(change->before.value_or("")) + " is gone";
    return item + ": " + (change->before ? value(*change->before) + " -> " : "") + value(*change->after);
  }

  void add(Section section, std::string title, std::vector<Entry> entries) {
    if (entries.empty()) return;
    SectionInfo const info = infoOf(section);
    parts_.push_back({section, info.mark, info.colour, std::move(title), std::move(entries)});
  }

  void collect() {
    for (Section const section : allSections) {
      std::vector<Entry> entries = entriesOf(section);
      if (section == Section::Objects || section == Section::Offers) continue;
      std::string title = titleOf(section, entries.size());
      add(section, std::move(title), std::move(entries));
      if (section == Section::New) collectObjects();
    }
    collectOffers();
  }

  static std::string titleOf(Section section, std::size_t count) {
    std::string const number = std::to_string(count) + ' ';
    switch (section) {
      case Section::Waiting:
        return number + "waiting";
      case Section::Gone:
        return number + "gone";
      case Section::Changed:
        return number + "changed";
      case Section::New:
        return number + "new";
      case Section::Choices:
        return counted(count, "list") + " of choices";
      case Section::Defaults:
        return counted(count, "default");
      case Section::Bounds:
        return counted(count, "pair") + " of bounds";
      case Section::Units:
        return counted(count, "quantity type");
      case Section::Objects:
      case Section::Offers:
        break;
    }
    return {};
  }

  std::vector<Entry> entriesOf(Section section) const {
    Effect const& effect = result_.effect;
    std::vector<Entry> entries;
    switch (section) {
      case Section::Waiting:
        for (WaitingChange const& change : effect.waiting) {
          if (!change.after || isVerdictOn(change) || isMoved(change)) continue;
          std::string line = change.item.name ? shortened(*change.item.name) : "the object";
          if (change.after->value) line += " = " + value(*change.after->value);
          line += "   " + whyWaiting(*change.after);
          entries.push_back({change.item.path, std::move(line), options_.own.contains(change.item)});
        }
        break;
      case Section::Gone:
        for (ValueChange const& change : effect.values) {
          if (change.after || isInVerdict(change.path, change.name) || isMoved(change)) continue;
          WaitingChange const* const waits = waitingOf(change.path, change.name);
          if (waits != nullptr && waits->after) continue;  // listed there, with its value
          bool const isOwn = options_.own.contains({change.path, change.name});
          std::string line = shortened(change.name);
          if (!change.before->empty()) line += " (was " + value(*change.before) + (isOwn ? ", set by you)" : ")");
          entries.push_back({change.path, std::move(line), isOwn});
        }
        break;
      case Section::Changed:
        for (ValueChange const& change : effect.values) {
          if (!change.before || !change.after || isInVerdict(change.path, change.name) || isMoved(change)) continue;
          entries.push_back(
              {change.path, shortened(change.name) + ": " + value(*change.before) + " -> " + value(*change.after)});
        }
        break;
      case Section::New:
        for (ValueChange const& change : effect.values) {
          if (change.before || isInVerdict(change.path, change.name) || isMoved(change)) continue;
          std::string line = shortened(change.name);
          line += change.after->empty() ? "   needs a value" : " = " + value(*change.after);
          entries.push_back({change.path, std::move(line)});
        }
        break;
      case Section::Choices:
        for (session::ChoicesChange const& change : effect.choices) {
          entries.push_back({change.path, shortened(change.name) + ": " + choices(change.before, change.after)});
        }
        break;
      case Section::Defaults:
        for (session::TextChange const& change : effect.defaults) {
          entries.push_back({change.path, shortened(change.name) + ": " + this->change(change.before, change.after)});
        }
        break;
      case Section::Bounds:
        for (session::BoundsChange const& bounds : effect.bounds) {
          std::string const before = range(bounds.before);
          std::string const after = range(bounds.after);
          if (before != after)
            entries.push_back({bounds.path, shortened(bounds.name) + ": " + before + " -> " + after});
        }
        break;
      case Section::Units:
        for (session::TextChange const& change : effect.quantities) {
          entries.push_back({change.path, shortened(change.name) + ": " + this->change(change.before, change.after)});
        }
        break;
      case Section::Objects:
      case Section::Offers:
        break;
    }
    return entries;
  }

  [[nodiscard]] bool isVerdictOn(WaitingChange const& change) const {
    Edit const* const edit = only();
    if (edit == nullptr || change.item.path != edit->path) return false;
    if (change.item.name) return isOfParam(edit->kind) && *change.item.name == edit->name;
    return isObjectInVerdict(change.item.path);
  }

  void collectObjects() {
    std::vector<Entry> came;
    std::vector<Entry> went;
    for (std::string const& path : result_.effect.objectsCreated) {
      if (!isObjectInVerdict(path) && !isMoved(path)) came.push_back({path, ""});
    }
    for (std::string const& path : result_.effect.objectsDeleted) {
      if (!isObjectInVerdict(path) && !isMoved(path)) went.push_back({path, ""});
    }
    std::size_t const cameCount = came.size();
    std::size_t const wentCount = went.size();
    add(Section::Objects, counted(cameCount, "new object"), std::move(came));
    if (wentCount == 0) return;
    parts_.push_back({Section::Objects, '-', Colour::Red, counted(wentCount, "object") + " gone", std::move(went)});
  }

  void collectOffers() {
    auto const entries = [&](std::vector<Item> const& items) {
      std::vector<Entry> all;
      for (Item const& item : items) {
        Edit const* const edit = only();
        // An item that the edit switched is no news.
        bool const isSwitched =
            edit != nullptr && edit->path == item.path &&
            (item.name ? isOfParam(edit->kind) && edit->name == *item.name : isObjectInVerdict(item.path));
        if (!isSwitched && !isMoved(item)) all.push_back({item.path, item.name ? shortened(*item.name) : ""});
      }
      return all;
    };
    // An item that came into force is on offer no longer, which is no news either.
    std::vector<Item> lost;
    for (Item const& item : result_.effect.offersLost) {
      if (!present_.contains(item)) lost.push_back(item);
    }
    std::vector<Entry> gained = entries(result_.effect.offersGained);
    std::vector<Entry> lostEntries = entries(lost);
    if (std::size_t const count = gained.size(); count > 0) {
      parts_.push_back({Section::Offers, '+', Colour::Green, counted(count, "offer"), std::move(gained)});
    }
    if (std::size_t const count = lostEntries.size(); count > 0) {
      parts_.push_back(
          {Section::Offers, '-', Colour::Red, counted(count, "offer") + " withdrawn", std::move(lostEntries)});
    }
  }

  /// A text that is not a number limits nothing.
  [[nodiscard]] std::string range(session::BoundsChange::Bounds const& bounds) const {
    bool const hasLower = TDFParam::asQuantity(bounds.first).has_value();
    bool const hasUpper = TDFParam::asQuantity(bounds.second).has_value();
    if (hasLower && hasUpper) return value(bounds.first) + " to " + value(bounds.second);
    if (hasLower) return "at least " + value(bounds.first);
    return hasUpper ? "at most " + value(bounds.second) : "none";
  }

  /// The choices that came and went: "+ Unsteady, - Laminar".
  [[nodiscard]] std::string choices(ParamAllowedValues const& before, ParamAllowedValues const& after) const {
    auto const onOffer = [](ParamAllowedValues const& allowed) -> SharedStrings const& {
      return allowed.hasSubset ? allowed.subsetValues : allowed.allowedValues;
    };
    SharedStrings const& old = onOffer(before);
    SharedStrings const& now = onOffer(after);
    constexpr std::size_t mostListed = 6;
    std::string text;
    auto const list = [&](SharedStrings const& from, SharedStrings const& without, char const* mark) {
      std::size_t count = 0;
      for (std::string const& choice : from) {
        if (without.contains(choice)) continue;
        if (++count <= mostListed || options_.isOpen || options_.only) {
          text += (text.empty() ? "" : ", ") + (mark + value(choice));
        }
      }
      if (count > mostListed && !options_.isOpen && !options_.only) {
        text += " and " + std::to_string(count - mostListed) + " more";
        hasLeftOut_ = true;
      }
    };
    list(now, old, "+ ");
    list(old, now, "- ");
    if (!text.empty()) return text;
    if (before.hasAllowedValues != after.hasAllowedValues || before.allowsAnyValue != after.allowsAnyValue) {
      return after.hasAllowedValues && !after.allowsAnyValue ? "only listed values" : "any value";
    }
    return "another order";
  }

  // Sections

  void addSections(std::string& text) {
    // A line that is wider than the terminal takes several rows.
    auto const linesOf = [&](std::string_view lines) {
      std::string const rows = wrapped(lines, options_.look.width);
      return static_cast<std::size_t>(std::count(rows.begin(), rows.end(), '\n'));
    };
    std::size_t used = linesOf(text);
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      std::string const full = section(parts_[i]);
      // The titles of all further sections, the last line and the prompt need room, too.
      std::size_t const further = parts_.size() - i - 1 + 2;
      bool const fits = options_.isOpen || options_.look.rows == 0 || parts_[i].section == Section::Waiting ||
                        used + linesOf(full) + further <= options_.look.rows;
      if (fits) {
        text += full;
        used += linesOf(full);
        continue;
      }
      isFolded_ = true;
      text += title(parts_[i]);
      if (options_.opener)
        text += "   \"" + options_.opener(parts_[i].section) + "\" lists " +
                (parts_[i].entries.size() == 1 ? "it" : "them");
      text += '\n';
      ++used;
    }
  }

  [[nodiscard]] std::string title(Part const& part) const {
    return painted(std::string(1, part.mark) + ' ' + part.title, part.colour, options_.look);
  }

  struct Group {
    std::string head;
    std::vector<std::string> lines;
    bool isKept = false;
  };

  std::string section(Part const& part) {
    bool const isOpen = options_.isOpen || options_.only;
    bool const isWhole = isOpen || part.section == Section::Waiting;
    // A few values that wait are more easily read one by one.
    bool const isShort = part.section == Section::Waiting && part.entries.size() <= mostLines;
    std::vector<Group> const groups = isOpen || isShort ? byObject(part.entries) : folded(part.entries);
    std::string text = title(part) + '\n';
    std::size_t lines = 0;
    std::size_t left = 0;
    for (Group const& group : groups) {
      std::size_t const needed = 1 + group.lines.size();
      if (!isWhole && !group.isKept && lines > 0 && lines + needed > mostLines) {
        left += std::max<std::size_t>(1, group.lines.size());
        continue;
      }
      text += "    " + group.head + '\n';
      std::size_t shown = 0;
      for (std::string const& line : group.lines) {
        if (!isWhole && !group.isKept && shown + 1 >= mostLines) break;
        text += "      " + line + '\n';
        ++shown;
      }
      left += group.lines.size() - shown;
      lines += 1 + shown;
    }
    if (left > 0) {
      isFolded_ = true;
      text += "    ... and " + std::to_string(left) + " more";
      if (options_.opener) text += "; \"" + options_.opener(part.section) + "\" lists them";
      text += '\n';
    }
    isFolded_ = isFolded_ || hasLeftOut_;
    return text;
  }

  [[nodiscard]] std::string onlySection() {
    std::string text;
    for (Part const& part : parts_) {
      if (part.section == *options_.only) text += section(part);
    }
    return text.empty() ? "nothing " + std::string(emptyWord(*options_.only)) + '\n' : text;
  }

  static std::string_view emptyWord(Section section) noexcept {
    switch (section) {
      case Section::Waiting:
        return "began to wait";
      case Section::Gone:
        return "went";
      case Section::New:
        return "came";
      default:
        return "changed there";
    }
  }

  static void addTo(std::vector<Group>& groups, Entry const& entry) {
    std::string head = shownPath(entry.path);
    if (groups.empty() || groups.back().head != head || entry.line.empty()) {
      groups.push_back({std::move(head), {}, false});
    }
    if (!entry.line.empty()) groups.back().lines.push_back(entry.line);
    groups.back().isKept = groups.back().isKept || entry.isKept;
  }

  static std::vector<Group> byObject(std::vector<Entry> const& entries) {
    std::vector<Group> groups;
    for (Entry const& entry : entries) addTo(groups, entry);
    return groups;
  }

  /// Equal lines of many objects of a type become one line; lines that the same objects share, one group.
  std::vector<Group> folded(std::vector<Entry> const& entries) {
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> objectsOf;
    auto const keyOf = [](Entry const& entry) { return std::pair(PathUtils::typePathOf(entry.path), entry.line); };
    for (Entry const& entry : entries) {
      if (!entry.isKept) objectsOf[keyOf(entry)].push_back(entry.path);
    }
    std::vector<Group> groups;
    std::map<std::vector<std::string>, std::size_t> groupOf;
    std::vector<Entry const*> alone;
    std::set<std::pair<std::string, std::string>> done;
    for (Entry const& entry : entries) {
      auto const key = keyOf(entry);
      auto const found = entry.isKept ? objectsOf.end() : objectsOf.find(key);
      if (found == objectsOf.end() || found->second.size() < leastFolded) {
        alone.push_back(&entry);
        continue;
      }
      if (!done.insert(key).second) continue;
      isFolded_ = true;
      auto const [place, isNew] = groupOf.emplace(found->second, groups.size());
      if (isNew) {
        groups.push_back({patternOf(found->second) + "  (" + counted(found->second.size(), "object") + ')', {}, false});
      }
      if (!entry.line.empty()) groups[place->second].lines.push_back(entry.line);
    }
    for (Entry const* entry : alone) addTo(groups, *entry);
    return groups;
  }

  /// The paths, which have the same types, as one: names that differ become "*".
  static std::string patternOf(std::vector<std::string> const& paths) {
    auto const components = [](std::string_view path) {
      std::vector<std::string_view> parts;
      while (!path.empty()) {
        std::size_t const end = std::min(path.find('/', 1), path.size());
        parts.push_back(path.substr(0, end));
        path.remove_prefix(end);
      }
      return parts;
    };
    std::vector<std::string_view> const first = components(paths.front());
    std::vector<bool> isSame(first.size(), true);
    for (std::string const& path : paths) {
      std::vector<std::string_view> const parts = components(path);
      for (std::size_t i = 0; i < first.size() && i < parts.size(); ++i) {
        isSame[i] = isSame[i] && parts[i] == first[i];
      }
    }
    std::string pattern;
    for (std::size_t i = 0; i < first.size(); ++i) {
      pattern += isSame[i] ? shortened(first[i]) : shortened(first[i].substr(0, first[i].find(':'))) + ":*";
    }
    return pattern;
  }

  EditResult const& result_;
  ResultTextOptions const& options_;
  std::map<Item, WaitingChange const*> waiting_;
  std::map<Item, ValueChange const*> values_;
  /// The paths of objects that were renamed, and the items that went or came in them. Empty without a renaming.
  struct Renamed {
    std::string before;
    std::string after;
  };
  std::vector<Renamed> renamed_;
  std::set<Item> moves_;
  std::set<Item> offers_;
  /// Items that came or have another value.
  std::set<Item> present_;
  std::vector<Part> parts_;
  bool isFolded_ = false;
  mutable bool hasLeftOut_ = false;
};

}  // namespace

std::string_view sectionWord(Section section) noexcept {
  return infoOf(section).word;
}

std::string painted(std::string_view text, Colour colour, TextLook const& look) {
  if (!look.colour) return std::string(text);
  return "\x1b[" + std::to_string(static_cast<int>(colour)) + 'm' + std::string(text) + "\x1b[0m";
}

std::string shownPath(std::string_view path) {
  return path.empty() ? "/" : shortened(path);
}

std::string whyWaiting(Waiting const& waiting) {
  switch (waiting.reason) {
    case WaitingReason::NotAvailable:
      return "not available now" + (waiting.ruleReason.empty() ? "" : ": " + shortened(waiting.ruleReason));
    case WaitingReason::ObjectNotPresent:
      if (waiting.missingObject == waiting.item.path) return "its object is not present";
      return shownPath(waiting.missingObject) + " is not present";
    case WaitingReason::SwitchedOff:
      return "switched off";
    case WaitingReason::ValueNotAllowed:
      return "the value is not allowed now";
    case WaitingReason::Overridden:
      return "the rules fix another value";
    case WaitingReason::NotInTheRules:
      return "the rules do not know it";
  }
  return {};
}

std::string possibleText(session::Refused const& refused, bool isOpen) {
  constexpr std::size_t mostListed = 20;
  std::size_t const count = isOpen ? refused.possible.size() : std::min(refused.possible.size(), mostListed);
  std::size_t const all = std::max(refused.possible.size(), refused.possibleCount);
  std::string text = "possible: ";
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + shortened(refused.possible[i]);
  return count == all ? text : text + " and " + std::to_string(all - count) + " more";
}

std::string refusalText(session::Refused const& refused, ResultTextOptions const& options) {
  TextLook const& look = options.look;
  std::string text =
      painted("refused", Colour::Red, look) + ": " + harmless(refused.sentence) + " Nothing has changed.\n";
  if (!refused.possible.empty()) text += "  " + possibleText(refused, options.isOpen) + '\n';
  if (refused.nearest && isTypeable(*refused.nearest)) {
    text += "  nearest: " + painted(options.command(*refused.nearest), Colour::Green, look) + '\n';
  }
  return text;
}

std::string resultText(EditResult const& result, ResultTextOptions const& options) {
  if (result.refused) return refusalText(*result.refused, options);
  return ResultWriter(result, options).text();
}

}  // namespace tarn::tool
