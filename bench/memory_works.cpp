// SPDX-License-Identifier: GPL-2.0-or-later
#include "counters.hpp"
#include "work.hpp"

namespace veldra_bench {

namespace {

using veldra::Composition;
using veldra::Library;
using veldra::Material;

/// What reading a list takes at most, and what the list itself takes.
template <class T>
Memory peak_of_list(Workshop& workshop) {
  const auto library = open_veldra(workshop.sample().path());
  // The caches of the connection are filled first; they do not belong to the list.
  library->get<T>(1u);
  const CountedHeap heap;
  std::vector<std::shared_ptr<T>> list;
  library->get(list);
  const auto count = static_cast<double>(list.size());
  return {static_cast<double>(heap.peak()) / count, static_cast<double>(heap.live()) / count};
}

/// Beside the most that there should be.
Memory blocks_of_material(Workshop& workshop) {
  const auto library = open_veldra(workshop.sample().path());
  library->get<Material>(1u);  // as above
  const CountedHeap heap;
  std::vector<std::shared_ptr<Material>> list;
  library->get(list);
  return {static_cast<double>(heap.blocks()) / static_cast<double>(list.size()), 40};
}

template <class List, class Free>
double plain_bytes(const List& list, std::size_t before, Free free) {
  const double bytes = static_cast<double>(heap_bytes() - before) / static_cast<double>(list.size);
  List owned = list;
  free(&owned);
  return bytes;
}

template <class T>
double veldra_bytes(const Library& library) {
  // SQLite's page cache is filled by a first reading.
  {
    std::vector<std::shared_ptr<T>> first;
    library.get(first);
  }
  const std::size_t before = heap_bytes();
  std::vector<std::shared_ptr<T>> list;
  library.get(list);
  return static_cast<double>(heap_bytes() - before) / static_cast<double>(list.size());
}

Memory size_of_material(Workshop& workshop) {
  const double ours = veldra_bytes<Material>(*open_veldra(workshop.sample().path()));
  const auto plain = open_plain(workshop.sample().path());
  plain_materials first = plain_all_materials(plain.get());
  plain_free_materials(&first);
  const std::size_t before = heap_bytes();
  return {ours, plain_bytes(plain_all_materials(plain.get()), before, plain_free_materials)};
}

Memory size_of_composition(Workshop& workshop) {
  const double ours = veldra_bytes<Composition>(*open_veldra(workshop.sample().path()));
  const auto plain = open_plain(workshop.sample().path());
  plain_compositions first = plain_all_compositions(plain.get());
  plain_free_compositions(&first);
  const std::size_t before = heap_bytes();
  return {ours, plain_bytes(plain_all_compositions(plain.get()), before, plain_free_compositions)};
}

}  // namespace

std::vector<MemoryWork> memory_works() {
  return {
      {"memory_all_materials",
       "bytes at most while all materials are read; beside it, of the materials themselves", 1.5,
       peak_of_list<Material>},
      {"memory_all_compositions",
       "bytes at most while all compositions are read; beside it, of the compositions themselves",
       1.5, peak_of_list<Composition>},
      {"blocks_of_material", "blocks of a material in a list of all; beside it, their target", 1,
       blocks_of_material, "count"},
      {"size_of_material", "bytes of a material in a list of all", 0, size_of_material},
      {"size_of_composition", "bytes of a composition in a list of all", 0, size_of_composition},
  };
}

}  // namespace veldra_bench
