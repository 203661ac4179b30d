// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_MODEL_DRAFTS_HPP
#define VELDRA_TESTS_STORE_MODEL_DRAFTS_HPP

#include "store/model_store.hpp"

#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace veldra_tests {

/// Numbers that are the same on every machine: those of a seed, or bytes and then those of a seed.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  explicit Random(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

  /// Whether there are bytes that decide.
  bool has_bytes() const { return next_ != bytes_.size(); }

  unsigned below(unsigned end) {
    return has_bytes() ? bytes_[next_++] % end : static_cast<unsigned>(engine_() % end);
  }
  bool chance(unsigned percent) { return below(100) < percent; }
  double length() { return 0.25 * (1 + below(12)); }

  template <class Container>
  auto pick(const Container& container) {
    return *std::next(container.begin(), below(static_cast<unsigned>(container.size())));
  }

  /// One of the names, or a new one that starts with `prefix`.
  std::string name(const std::set<std::string>& names, const std::string& prefix) {
    if (!names.empty() && chance(50)) return pick(names);
    return prefix + std::to_string(below(5));
  }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t next_ = 0;
  std::mt19937 engine_;
};

/// The keys of all objects of a kind.
std::vector<ModelKey> keys_in(const ModelStore& store, veldra::ObjectType kind);

/// Draws the values of new and of changed objects.
class Drafts {
 public:
  Drafts(Random& random, const ModelStore& store) : random_(random), store_(store) {}

  MaterialDraft new_material();
  MaterialDraft changed_material();
  CompositionDraft new_composition();
  CompositionDraft changed_composition();

 private:
  std::vector<std::string> tags();
  std::optional<std::string> layer();
  Values custom_values(veldra::ObjectType object_type);
  std::optional<std::string> code();
  std::set<double> thicknesses();
  void change(MaterialValues& values, unsigned percent);
  void change(CompositionDraft& draft, unsigned percent);
  std::string layer_material(CompositionDraft& draft);

  Random& random_;
  const ModelStore& store_;
};

/// Makes the objects of drafts. What they refer to is now the stored object of that name and now
/// a new one, which comes to the same.
class Maker {
 public:
  Maker(Random& random, const veldra::Library& library) : random_(random), library_(library) {}

  std::shared_ptr<veldra::Material> make(const MaterialDraft& draft);
  std::shared_ptr<veldra::Composition> make(const CompositionDraft& draft);

 private:
  /// The object with the values that both kinds have.
  template <class T, class AnyDraft>
  std::shared_ptr<T> begin(const AnyDraft& draft);
  template <class T>
  std::shared_ptr<T> stored_or_new(const std::string& name);
  static void set_code(veldra::Material& material, const std::optional<std::string>& code);
  template <class T>
  void set_tags(T& object, const std::vector<std::string>& tags);
  template <class T>
  static void set_custom_values(T& object, const Values& values);
  void set_layers(veldra::Composition& composition, const CompositionDraft& draft);

  Random& random_;
  const veldra::Library& library_;
};

}  // namespace veldra_tests

#endif
