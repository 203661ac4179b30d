// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/translations.hpp>

#include "foundation/translated.hpp"

namespace veldra {

namespace {
Translations* current = nullptr;
}

Translations::~Translations() = default;

void Translations::set(Translations* provider) { current = provider; }

Translations* Translations::get() { return current; }

String translated(const String& source) {
  String translation;
  if (current != nullptr && current->translate(translation, source, nullptr, 0)) return translation;
  return source;
}

}  // namespace veldra
