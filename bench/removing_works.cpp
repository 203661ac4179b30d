// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <algorithm>

namespace veldra_bench {

namespace {

using veldra::Tag;

enum { refusals = sample_tags };

/// 200, or fewer where a run is only to show that everything works.
unsigned unused_tags(const Workshop& workshop) { return std::min(workshop.materials(), 200u); }

/// Tags that nothing refers to, in a full library.
class UnusedTags {
 public:
  explicit UnusedTags(Workshop& workshop)
      : pair_(copies_of(workshop, workshop.sample().path())),
        first_(sample_tags + 1),
        end_(first_ + unused_tags(workshop)) {}

  void prepare() {
    insert_into(pair_->veldra_path);
    insert_into(pair_->plain_path);
  }

  void veldra(Digest* digest) {
    for (unsigned id = first_; id != end_; ++id) pair_->veldra->remove<Tag>(id);
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    for (unsigned id = first_; id != end_; ++id) plain_remove(pair_->plain.get(), PLAIN_TAG, id);
    add_rows(digest, pair_->plain_path);
  }

 private:
  void insert_into(const std::string& path) {
    const auto library = open_plain(path);
    plain_begin_write(library.get());
    for (unsigned id = first_; id != end_; ++id) {
      const std::string text = std::to_string(id);
      plain_execute(library.get(),
                    ("INSERT INTO \"Tag\" VALUES (" + text + ", 'unused " + text + "')").c_str());
    }
    plain_commit(library.get());
  }

  std::unique_ptr<Pair> pair_;
  unsigned first_;
  unsigned end_;
};

bool is_refused(veldra::Library& library, unsigned id) {
  try {
    library.remove<Tag>(id);
  } catch (const veldra::ObjectInUse&) {
    return true;
  }
  return false;
}

/// The removal of each tag that is in use.
class Refusals {
 public:
  explicit Refusals(Workshop& workshop) : pair_(copies_of(workshop, workshop.sample().path())) {}

  void veldra(Digest* digest) {
    unsigned refused = 0;
    for (unsigned id = 1; id <= refusals; ++id) refused += is_refused(*pair_->veldra, id);
    if (digest != nullptr) digest->add(std::uint64_t{refused});
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    unsigned refused = 0;
    for (unsigned id = 1; id <= refusals; ++id) {
      refused += !plain_remove(pair_->plain.get(), PLAIN_TAG, id);
    }
    if (digest != nullptr) digest->add(std::uint64_t{refused});
    add_rows(digest, pair_->plain_path);
  }

 private:
  std::unique_ptr<Pair> pair_;
};

class Purge {
 public:
  explicit Purge(Workshop& workshop) : workshop_(workshop) {}

  void prepare() {
    pair_.reset();
    pair_ = copies_of(workshop_, workshop_.small_sample().path());
  }

  void veldra(Digest* digest) {
    pair_->veldra->purge();
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    plain_purge(pair_->plain.get());
    add_rows(digest, pair_->plain_path);
  }

 private:
  Workshop& workshop_;
  std::unique_ptr<Pair> pair_;
};

Work remove_tags(Workshop& workshop) {
  auto tags = std::make_shared<UnusedTags>(workshop);
  return {[tags](Digest* digest) { tags->veldra(digest); },
          [tags](Digest* digest) { tags->plain(digest); }, [tags] { tags->prepare(); }};
}

Work refuse_removals(Workshop& workshop) {
  auto removals = std::make_shared<Refusals>(workshop);
  return {[removals](Digest* digest) { removals->veldra(digest); },
          [removals](Digest* digest) { removals->plain(digest); }};
}

Work purge(Workshop& workshop) {
  auto state = std::make_shared<Purge>(workshop);
  return {[state](Digest* digest) { state->veldra(digest); },
          [state](Digest* digest) { state->plain(digest); }, [state] { state->prepare(); }};
}

unsigned purged_items(const Workshop& workshop) {
  return workshop.small_materials() + workshop.small_materials() / 5;
}

}  // namespace

std::vector<TimedWork> removing_works() {
  return {
      {"remove_unused_tags", "200 unused tags one by one, per tag", 1.1, unused_tags, remove_tags,
       2},
      {"refused_removals", "50 tags that are in use, per refusal", 1.2,
       [](const Workshop&) { return unsigned{refusals}; }, refuse_removals},
      {"purge", "everything, of a tenth of the materials, per material and composition", 1.1,
       purged_items, purge, 3},
  };
}

}  // namespace veldra_bench
