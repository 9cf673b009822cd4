// Every read is one link in two lists: the readers of its fact, which is doubly linked, and the reads of its reader. So
// a visit that runs again replaces its reads in time proportional to their number, and nothing stale remains.

#include "incremental/ReaderIndex.h"

namespace tarn {

void ReaderIndex::setReads(Reader reader, Reads& reads, std::vector<Fact> const& facts) {
  clearReads(reads);
  for (Fact const fact : facts) {
    Reads const made = newLink();
    std::uint32_t const place = findOrAdd(fact);
    // Nothing fails from here on.
    firstFreeLink_ = links_[made].nextOfReader;
    ReadFact& readFact = facts_[place];
    links_[made] = {reader, place, readFact.first, nothing, reads};
    if (readFact.first != nothing) links_[readFact.first].previousOfFact = made;
    readFact.first = made;
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
      facts_[link.fact].first = link.nextOfFact;
    } else {
      remove(link.fact);
    }
    Reads const next = link.nextOfReader;
    link.nextOfReader = firstFreeLink_;
    firstFreeLink_ = reads;
    reads = next;
  }
}

std::vector<Fact> ReaderIndex::factsOf(Reads reads) const {
  std::vector<Fact> facts;
  for (; reads != nothing; reads = links_[reads].nextOfReader) facts.push_back(facts_[links_[reads].fact].fact);
  return facts;
}

void ReaderIndex::clear() noexcept {
  facts_.clear();
  links_.clear();
  buckets_.clear();
  used_ = 0;
  usedOfKind_ = {};
  firstFreeFact_ = nothing;
  firstFreeLink_ = nothing;
}

std::uint32_t ReaderIndex::find(Fact fact) const noexcept {
  if (usedOfKind_[static_cast<std::size_t>(kindOf(fact))] == 0) return nothing;
  std::uint32_t place = buckets_[bucketOf(fact)];
  while (place != nothing && facts_[place].fact != fact) place = facts_[place].nextInBucket;
  return place;
}

/// A fact that is added has no reader yet.
std::uint32_t ReaderIndex::findOrAdd(Fact fact) {
  if (std::uint32_t const known = find(fact); known != nothing) return known;
  if (used_ == buckets_.size()) grow();
  if (firstFreeFact_ == nothing) {
    facts_.push_back({0, nothing, nothing});
    firstFreeFact_ = static_cast<std::uint32_t>(facts_.size() - 1);
  }
  std::uint32_t const place = firstFreeFact_;
  firstFreeFact_ = facts_[place].nextInBucket;
  std::uint32_t& bucket = buckets_[bucketOf(fact)];
  facts_[place] = {fact, nothing, bucket};
  bucket = place;
  ++used_;
  ++usedOfKind(fact);
  return place;
}

void ReaderIndex::remove(std::uint32_t place) noexcept {
  std::uint32_t* at = &buckets_[bucketOf(facts_[place].fact)];
  while (*at != place) at = &facts_[*at].nextInBucket;
  *at = facts_[place].nextInBucket;
  facts_[place].nextInBucket = firstFreeFact_;
  firstFreeFact_ = place;
  --used_;
  --usedOfKind(facts_[place].fact);
}

void ReaderIndex::grow() {
  constexpr std::size_t atFirst = 16;
  std::vector<std::uint32_t> former(buckets_.empty() ? atFirst : buckets_.size() * 2, nothing);
  former.swap(buckets_);
  for (std::uint32_t place : former) {
    while (place != nothing) {
      std::uint32_t const next = facts_[place].nextInBucket;
      std::uint32_t& bucket = buckets_[bucketOf(facts_[place].fact)];
      facts_[place].nextInBucket = bucket;
      bucket = place;
      place = next;
    }
  }
}

/// The first of the free links. It stays free.
ReaderIndex::Reads ReaderIndex::newLink() {
  if (firstFreeLink_ == nothing) {
    links_.push_back({{0, 0}, 0, nothing, nothing, nothing});
    firstFreeLink_ = static_cast<Reads>(links_.size() - 1);
  }
  return firstFreeLink_;
}

}  // namespace tarn
