// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TRANSLATIONS_HPP
#define VELDRA_TRANSLATIONS_HPP

#include <veldra/export.hpp>
#include <veldra/string.hpp>

namespace veldra {

/// The host's translations of the texts that the library writes into files: the names of the
/// material types of a new library, and the type "Generic" of a material that is saved without
/// one. So with a provider of another language than the file's such a material adds a type to it.
///
///     class German : public veldra::Translations {
///      public:
///       bool translate(veldra::String& translation, const veldra::String& source, const char*,
///                      int) override {
///         if (source == veldra::String("Wood")) translation = "Holz";
///         return !translation.empty();
///       }
///     };
///     German german;
///     veldra::Translations::set(&german);   // before libraries are used
class VELDRA_EXPORT Translations {
 public:
  virtual ~Translations();

  /// Writes the translation of `source` into `translation`, which is empty at the call, and
  /// returns true; or returns false, and `source` is used as it is.
  ///
  /// The library passes a null `context` and a `count` of 0. What it throws ends the operation that
  /// asked, and reaches its caller.
  virtual bool translate(String& translation, const String& source, const char* context,
                         int count) = 0;

  /// Makes `provider` the one that is asked from now on, in the whole process; null means that
  /// texts stay as they are, which is so at the start. The provider stays the host's and must
  /// live until it is replaced. Not synchronised: call it before libraries are used. The provider
  /// is asked in each thread that uses a library.
  static void set(Translations* provider);

  /// The provider that was set last; null for none.
  static Translations* get();
};

}  // namespace veldra

#endif
