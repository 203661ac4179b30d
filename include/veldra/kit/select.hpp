// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_SELECT_HPP
#define VELDRA_KIT_SELECT_HPP

#include <veldra/kit/error.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/fields.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace veldra::kit {

/// A filter that makes no sense. `what()` names the place and says what was expected there.
class VELDRA_KIT_EXPORT FilterError : public Error {
 public:
  /// Makes the error of a place, in characters from 1, with the end of its sentence.
  FilterError(std::size_t position, const std::string& sentence);

  /// Copies the error.
  FilterError(const FilterError& other) = default;

  /// Destroys the error.
  ~FilterError() override;

  /// Where in the filter it lies, in characters from 1.
  std::size_t position() const noexcept { return position_; }

  /// What is wrong there.
  const std::string& sentence() const noexcept { return sentence_; }

 private:
  std::size_t position_;
  std::string sentence_;
};

/// What a filter is made of.
class Expression;

/// Selects objects by the values of their fields:
///
///     const veldra::kit::Fields<veldra::Composition> fields(*library);
///     const veldra::kit::Filter<veldra::Composition> wanted("U < 0.2 and tag = Roof", fields);
///     if (wanted(*composition)) print(composition->name());
///
/// Others are `thickness >= 100 mm and not (name ~ brick or manufacturer is empty)` for materials,
/// and for a custom property `` `Fire class` = "A1" ``.
///
/// What is written, and what it means:
///
/// - `=`, `!=`: equal or not, without regard to case and accents (`folded`); lengths that are the
///   same in another unit are equal.
/// - `~`: contains, without regard to case and accents.
/// - `==`, `~~`: equal, contains, exactly as written.
/// - `<`, `<=`, `>`, `>=`: before and behind; texts in the order of their folded forms.
/// - `is empty`, `is not empty`: whether there is a value.
/// - `not`, `and`, `or`, `( )`: `not` binds closest, `or` least.
///
/// Rules:
///
/// - A comparison with a value that is not there is false, `!=` too. `not name = x` then is true.
/// - Of a list, such as tags, one entry has to do; for `!=` none may. Layers are compared by the
///   names of their materials, hatches by their names.
/// - Numbers are in the unit of the field, or have one behind them.
/// - Custom values are texts. `<` and its like compare those that are numbers as numbers where a
///   number stands behind.
/// - Quotes, single or double, only delimit, and there is no escape in them. Names of fields with
///   blanks stand in back-quotes.
/// - A tag, type or drawing layer that is compared by `=`, `==` or `!=` has to be in the library.
///
/// `T` is one of the six classes of objects. Thread rule: that of the objects.
template <class T>
class VELDRA_KIT_EXPORT Filter {
 public:
  /// Reads a filter. `fields` must outlive it. Asks the library of the fields for the names of
  /// tags, types and drawing layers that the filter names.
  ///
  /// Throws:
  /// - `FilterError`: the text is no filter, or compares with what a field cannot be.
  /// - `UnknownField`: it names a field that is not there.
  /// - a database error (`Library`).
  Filter(const std::string& text, const Fields<T>& fields);

  /// Whether an object is selected.
  ///
  /// Throws: as `Field::get`.
  bool operator()(const T& object) const;

 private:
  std::shared_ptr<const Expression> expression_;
  const Fields<T>* fields_;
};

/// Orders objects by the values of their fields, such as "type,-U": by type, and within a type by
/// falling U. Objects without a value come last either way. Objects that are equal in all that keep
/// the order that they have.
template <class T>
class VELDRA_KIT_EXPORT Order {
 public:
  /// Reads an order. `fields` must outlive it.
  ///
  /// Throws:
  /// - `Error`: a name is missing.
  /// - `UnknownField`: it names a field that is not there.
  Order(const std::string& text, const Fields<T>& fields);

  /// Sorts a list. Reads each field of each object once.
  ///
  /// Throws, and leaves the list as it is: as `Field::get`.
  void sort(std::vector<std::shared_ptr<T>>& objects) const;

 private:
  struct By {
    const Field<T>* field;
    bool falling;
  };

  std::vector<By> by_;
};

/// The names in a list such as "name,`Fire class`,U": back-quotes delimit, blanks around names do
/// not count.
///
/// Throws `Error`: a name is missing, or a back-quote is open.
VELDRA_KIT_EXPORT std::vector<std::string> names_in(const std::string& list);

extern template class Filter<Tag>;
extern template class Filter<Layer>;
extern template class Filter<MaterialType>;
extern template class Filter<CustomProperty>;
extern template class Filter<Material>;
extern template class Filter<Composition>;

extern template class Order<Tag>;
extern template class Order<Layer>;
extern template class Order<MaterialType>;
extern template class Order<CustomProperty>;
extern template class Order<Material>;
extern template class Order<Composition>;

}  // namespace veldra::kit

#endif
