// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TRANSLATIONS_HPP
#define VELDRA_TRANSLATIONS_HPP

#include <veldra/export.hpp>
#include <veldra/string.hpp>

namespace veldra {

/// The host's translations of the few texts that the library itself writes into files:
///
/// - the names of the thirteen material types of a new library (`MaterialType`),
/// - the name of the type "Generic", which a material gets that is saved without a type.
///
/// A host sets one provider for the whole process. If its language is not that of a file, saving a
/// material without a type adds a type to the file.
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
  /// Destroys the provider. The library never does.
  virtual ~Translations();

  /// Translates one text. Called in each thread that uses a library.
  ///
  /// - `translation` is empty at the call and receives the translation.
  /// - `source` is the English text.
  /// - `context` is null and `count` is 0: the library uses neither.
  ///
  /// Returns true if there is a translation. With false, `source` itself is written into the file.
  ///
  /// An exception ends the operation that asked for the text, and reaches its caller.
  virtual bool translate(String& translation, const String& source, const char* context,
                         int count) = 0;

  /// Makes `provider` the one of the whole process. With null, as at the start, texts stay in
  /// English.
  ///
  /// Lifetime: the provider stays the host's and must live until another one is set.
  ///
  /// Thread rule: not synchronised. Call it before any library is used.
  static void set(Translations* provider);

  /// The provider of the process; null for none.
  static Translations* get();
};

}  // namespace veldra

#endif
