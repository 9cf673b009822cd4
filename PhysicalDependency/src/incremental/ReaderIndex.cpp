// Every read is one link in two lists: the readers of its fact, which is doubly linked, and the reads of its reader. So
// a visit that runs again replaces its reads in time proportional to their number, and nothing stale remains.

#include "incremental/ReaderIndex.h"

namespace tarn {

void ReaderIndex::setReads(Reader reader, Reads& reads, std::vector<Fact> const& facts) {
  clearReads(reads);
  for (Fact const fact : facts) {
    Reads const made = newLink();
    Readers& readers = readersOf_.try_emplace(fact, Readers{fact}).first->second;
    links_[made] = {reader, &readers, readers.first, nothing, reads};
    if (readers.first != nothing) links_[readers.first].previousOfFact = made;
    readers.first = made;
    reads = made;
  }
}

void ReaderIndex::clearReads(Reads& reads) noexcept {
  while (reads != nothing) {
    Link& link = links_[reads];
    if (link.nextOfFact != nothing) links_[link.nextOfFact].previousOfFact = link.previousOfFact;
    if (link.previousOfFact != nothing) {
      links_[link.previousOfFact].nextOfFact = link.nextOfFact;
    } else if (link.nextOfFact != nothing) {
      link.readers->first = link.nextOfFact;
    } else {
      readersOf_.erase(link.readers->fact);
    }
    Reads const next = link.nextOfReader;
    link.nextOfReader = firstFree_;
    firstFree_ = reads;
    reads = next;
  }
}

void ReaderIndex::clear() noexcept {
  readersOf_ = {};
  links_ = {};
  firstFree_ = nothing;
}

/// The link stays in the list of free ones until nothing can fail any more.
ReaderIndex::Reads ReaderIndex::newLink() {
  if (firstFree_ == nothing) {
    links_.push_back({});
    links_.back().nextOfReader = nothing;
    firstFree_ = static_cast<Reads>(links_.size() - 1);
  }
  Reads const made = firstFree_;
  firstFree_ = links_[made].nextOfReader;
  return made;
}

}  // namespace tarn
