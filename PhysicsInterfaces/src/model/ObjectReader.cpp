// Whether a handle is in force. A handle is compared with the reader that the model offers now, because a view may
// offer the reader of the model behind it at some times only.
#include <tarn/ObjectReader.h>

#include <tarn/ModelTDF.h>

namespace tarn {

ObjectReader::~ObjectReader() = default;

ObjectReader const* ObjectHandle::readerIn(ModelTDF const& model) const noexcept {
  if (reader_ == nullptr || model.objectReader() != reader_ || reader_->generation_ != generation_) return nullptr;
  return reader_;
}

}  // namespace tarn
