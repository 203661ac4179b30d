// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>
#include <thread>

// Each thread uses a handle of its own on the file.
void add(const std::shared_ptr<veldra::Library>& library, const char* prefix) {
  for (int i = 0; i < 20; ++i) {
    const std::string name = prefix + std::to_string(i);
    veldra::Material::create(name.c_str())->save(library);  // waits while the other one writes
  }
}

int main() {
  // Libraries are opened by one thread at a time.
  auto first = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  auto second = veldra::Library::open("office.lib", false);

  std::thread one(add, first, "Brick ");
  std::thread other(add, second, "Board ");
  one.join();
  other.join();
  std::cout << first->count<veldra::Material>() << " materials\n";

  // A snapshot is one state for several reads, whatever others write meanwhile.
  const auto before = first->count<veldra::Tag>();
  {
    const veldra::Library::Snapshot snapshot(*first);
    std::cout << first->count<veldra::Tag>() - before << " tags since then\n";
  }
  veldra::Tag::create("exterior")->save(second);
  std::cout << first->count<veldra::Tag>() - before << " tag since then\n";
}
