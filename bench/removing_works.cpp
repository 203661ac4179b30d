// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <algorithm>

namespace veldra_bench {

namespace {

using veldra::Tag;

enum { refusals = sample_tags };

/// 200, or fewer where a run is only to show that everything works.
unsigned unused_tags(const Workshop& workshop) { return std::min(workshop.materials(), 200u); }

/// Tags to which nothing refers, behind those of the sample.
void insert_unused_tags(const std::string& path, unsigned first, unsigned end) {
  const auto library = open_plain(path);
  plain_begin_write(library.get());
  for (unsigned id = first; id != end; ++id) {
    const std::string text = std::to_string(id);
    plain_execute(library.get(),
                  ("INSERT INTO \"Tag\" VALUES (" + text + ", 'unused " + text + "')").c_str());
  }
  plain_commit(library.get());
}

/// One by one, in a full library.
class UnusedTags {
 public:
  explicit UnusedTags(Workshop& workshop)
      : pair_(copies_of(workshop, workshop.sample().path())),
        first_(sample_tags + 1),
        end_(first_ + unused_tags(workshop)) {}

  void prepare() {
    insert_unused_tags(pair_->veldra_path, first_, end_);
    insert_unused_tags(pair_->plain_path, first_, end_);
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

/// What nothing refers to, in one transaction. The other side only finds it.
template <class T, plain_kind kind>
class PurgeInOne {
 public:
  PurgeInOne(Workshop& workshop, const std::string& path)
      : workshop_(workshop), path_(path), finding_(open_plain(path)) {}

  void prepare() {
    fewest_.reset();
    veldra_.reset();
    veldra_path_ = workshop_.copy_of(path_, "veldra.lib");
    fewest_path_ = workshop_.copy_of(path_, "fewest.lib");
    veldra_ = open_veldra(veldra_path_);
    fewest_ = open_plain(fewest_path_);
  }

  void veldra(Digest* digest) {
    veldra::Library::Transaction transaction(*veldra_);
    veldra_->purge<T>();
    transaction.commit();
    add_rows(digest, veldra_path_);
  }

  void fewest(Digest* digest) {
    plain_purge_in_one(fewest_.get(), kind);
    add_rows(digest, fewest_path_);
  }

  void find() { plain_find_unreferenced(finding_.get(), kind); }

 private:
  Workshop& workshop_;
  std::string path_;
  PlainLibrary finding_;
  std::string veldra_path_;
  std::string fewest_path_;
  std::shared_ptr<veldra::Library> veldra_;
  PlainLibrary fewest_;
};

template <class T, plain_kind kind>
Work purging(Workshop& workshop, const std::string& path) {
  auto purge = std::make_shared<PurgeInOne<T, kind>>(workshop, path);
  Work work{[purge](Digest* digest) { purge->veldra(digest); }, nullptr,
            [purge] { purge->prepare(); }};
  work.fewest = [purge](Digest* digest) { purge->fewest(digest); };
  work.otherwise = {"finding what is unused", [purge](Digest*) { purge->find(); }, false};
  return work;
}

/// 12,500 where the library has 10,000, and the multiples of it.
template <unsigned factor>
unsigned partly_used(const Workshop& workshop) {
  return std::max(workshop.materials() / 4, 3u) * 5 * factor;
}

template <unsigned factor>
Work purge_materials(Workshop& workshop) {
  const Sample& sample = workshop.partly_used_sample(partly_used<factor>(workshop));
  return purging<veldra::Material, PLAIN_MATERIAL>(workshop, sample.path());
}

/// 8,000 where the library has 10,000, beside ten times as many taggings.
unsigned unused_beside_used(const Workshop& workshop) { return workshop.materials() / 5 * 4; }

Work purge_tags(Workshop& workshop) {
  const Sample& sample = workshop.partly_used_sample(workshop.materials() / 10 * 23);
  const std::string path = workshop.copy_of(sample.path(), "unused_tags.lib");
  insert_unused_tags(path, sample_tags + 1, sample_tags + 1 + unused_beside_used(workshop));
  return purging<Tag, PLAIN_TAG>(workshop, path);
}

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
      {"purge_materials",
       "materials, a third of them unused, in one transaction, per material (12,500)",
       {3, Against::Otherwise},
       partly_used<1>,
       purge_materials<1>,
       2},
      {"purge_materials_4",
       "the same for 4 times as many",
       {3, Against::Otherwise},
       partly_used<4>,
       purge_materials<4>,
       3},
      {"purge_materials_16",
       "the same for 16 times as many",
       {3, Against::Otherwise},
       partly_used<16>,
       purge_materials<16>,
       3,
       true},
      {"purge_tags",
       "unused tags beside 10 times as many taggings, in one transaction, per tag",
       {3, Against::Otherwise},
       unused_beside_used,
       purge_tags,
       2},
  };
}

}  // namespace veldra_bench
