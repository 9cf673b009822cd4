#pragma once

#include <optional>
#include <string>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/PhysicsData.h>

namespace tarn::session {

/// Why a model was not saved.
enum class SaveFault : int {
  /// The file has been changed since it was read or saved, or another file of that name is there.
  FileChanged = 0,
  /// The state cannot be written as model text.
  NotWritable = 1,
  /// The disk is full, a folder is missing, there is no permission, and the like.
  WriteFailed = 2,
  /// The model came from the standard input and has no file.
  NoFile = 3
};

struct TARN_EXPORT SaveError {
  SaveFault fault = SaveFault::WriteFailed;
  /// The event, with the name of the file and the remedy.
  std::string sentence;

  friend bool operator==(SaveError const&, SaveError const&) = default;
};

/// Whether saving may replace a file that someone else has written.
enum class Overwrite { No, Yes };

/// A model file at work: it is read, and saved again with what has changed. Everything else stays byte for byte,
/// as `rewriteModelText` says.
///
///     ModelFile file = ModelFile::read("pump.tdf");
///     auto opened = Session::open(*rules, file.text());
///     ...
///     if (auto const error = file.save(opened.session->result())) complain(error->sentence);
///
/// A file is written beside its place under another name, `pump.tdf.new-1`, and then renamed. So there is always either
/// the old or the new file, whatever happens. When saving fails, the file and this object are as they were, and saving
/// can be tried again. Permissions are kept. A symbolic link stays, and the file that it names is replaced. Another
/// kind of file, such as a pipe, is written directly.
class TARN_EXPORT ModelFile {
 public:
  /// Reads a file to its end; "-" is the standard input. Throws a `FileError` that names the file if it cannot be
  /// opened or read.
  [[nodiscard]] static ModelFile read(std::string const& name);
  /// A file that is not there yet. Nothing is read or written.
  [[nodiscard]] static ModelFile named(std::string name);
  /// A file that was read or saved earlier and held `bytes` then. Nothing is read. Saving finds out whether the file
  /// still holds them.
  [[nodiscard]] static ModelFile remembered(std::string name, std::string bytes);

  [[nodiscard]] std::string const& name() const noexcept { return name_; }
  /// The text as it was read or saved last.
  [[nodiscard]] std::string const& bytes() const noexcept { return bytes_; }
  /// The same with what it says. Linear in its length.
  [[nodiscard]] ModelText text() const;

  /// Writes the text for a state to the file. Nothing is written when that changes nothing. Returns nothing when the
  /// file now holds the text.
  [[nodiscard]] std::optional<SaveError> save(ModelState const& state, ModelTextOrder const& order = {},
                                              Overwrite overwrite = Overwrite::No);
  /// The same for a text that the caller has made.
  [[nodiscard]] std::optional<SaveError> saveText(std::string text, Overwrite overwrite = Overwrite::No);
  /// Writes it to another file, which is the file of this object from then on.
  [[nodiscard]] std::optional<SaveError> saveAs(std::string const& name, ModelState const& state,
                                                ModelTextOrder const& order = {}, Overwrite overwrite = Overwrite::No);

 private:
  ModelFile(std::string name, std::string bytes, bool exists);

  std::string name_;
  std::string bytes_;
  /// Whether the file was there when it was read or saved.
  bool exists_ = false;
};

/// The place of a parameter among those of its object, by the rules: where new lines of a saved model go. `rules` must
/// outlive the result.
[[nodiscard]] TARN_EXPORT ModelTextOrder orderOfRules(PhysicsData const& rules);

}  // namespace tarn::session
