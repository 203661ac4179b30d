// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "columns.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "process/standard_streams.hpp"
#include "progress.hpp"
#include "summary.hpp"
#include "table.hpp"

#include <fmt/format.h>

#include <optional>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  veldra::ObjectType kind{};
  std::vector<std::string> tags;
  std::string type;
  std::string pattern;
  bool by_pattern = false;
  std::string filter;
  bool filtered = false;
  std::string order;
  std::string columns;
  bool json = false;
};

/// A tag that is not there would silently select nothing.
std::set<veldra::String> tag_names(const Arguments& arguments, const veldra::Library& library) {
  std::set<veldra::String> names;
  for (const auto& tag : arguments.tags) {
    const auto name = library_text(tag);
    if (!library.get<veldra::Tag>(name)) {
      throw LibraryFailure(fmt::format("there is no tag {} in the library{}", in_quotes(tag),
                                       alternatives<veldra::Tag>(library, tag)));
    }
    names.insert(name);
  }
  return names;
}

void set_criteria(veldra::MaterialCriteria& criteria, const Arguments& arguments,
                  const veldra::Library& library) {
  criteria.tags = tag_names(arguments, library);
  if (!arguments.type.empty()) {
    criteria.type = find_object<veldra::MaterialType>(library, arguments.type);
  }
}

void set_criteria(veldra::CompositionCriteria& criteria, const Arguments& arguments,
                  const veldra::Library& library) {
  criteria.tags = tag_names(arguments, library);
  if (!arguments.type.empty()) {
    criteria.types = static_cast<unsigned>(composition_type(arguments.type));
  }
}

void set_criteria(veldra::CustomPropertyCriteria& criteria, const Arguments& arguments,
                  const veldra::Library&) {
  if (arguments.type.empty()) return;
  const auto kind = kinds_by_name().find(arguments.type);
  if (kind == kinds_by_name().end()) {
    throw Failure(fmt::format("there are no properties for {}; there are material, composition",
                              in_quotes(arguments.type)));
  }
  criteria.object_type = kind->second;
}

template <class Criteria>
void set_criteria(Criteria&, const Arguments&, const veldra::Library&) {}

/// What makes no sense for a kind is a wrong argument.
void require_sense(const Arguments& arguments) {
  const bool tagged = arguments.kind == veldra::ObjectType::Material ||
                      arguments.kind == veldra::ObjectType::Composition;
  if (!arguments.tags.empty() && !tagged) {
    throw CLI::ValidationError("--tag", "only materials and compositions have tags");
  }
  const bool typed = tagged || arguments.kind == veldra::ObjectType::CustomProperty;
  if (!arguments.type.empty() && !typed) {
    throw CLI::ValidationError("--type", "only materials, compositions and properties have types");
  }
}

/// What a list is made of: the objects of a library that the arguments select, in their order, and
/// the fields of them that are to be shown.
template <class T>
class Listing {
 public:
  Listing(const veldra::Library& library, const Arguments& arguments)
      : library_(library), arguments_(arguments), fields_(library) {
    if (!arguments.columns.empty()) {
      columns_ = columns_named(fields_, kit::names_in(arguments.columns));
    }
    if (arguments.filtered) filter_.emplace(arguments.filter, fields_);
    if (!arguments.order.empty()) order_.emplace(arguments.order, fields_);
    set_criteria(criteria_, arguments, library);
    if (arguments.by_pattern) {
      read_by_pattern();
    } else {
      read();
    }
    sort_by_name(objects_);
    if (order_) order_->sort(objects_);
  }

  Json json() const {
    Json list = Json::array();
    const auto usual = columns_named(fields_, usual_columns(veldra::ObjectTraits<T>::type));
    for (const auto& object : objects_) {
      list.push_back(columns_.empty() ? usual_json(*object, usual)
                                      : json_of(*object, columns_, fields_));
      progress_.step();
    }
    return list;
  }

  Table table() const {
    const auto kind = veldra::ObjectTraits<T>::type;
    const auto columns = columns_.empty() ? columns_named(fields_, usual_columns(kind)) : columns_;
    Table table = table_of<T>(columns, library_.unit());
    for (const auto& object : objects_) {
      table.add(cells_of(*object, columns, library_.unit()));
      progress_.step();
    }
    return table;
  }

 private:
  /// The summary, and what the table has beside it; neither has what an object has not.
  Json usual_json(const T& object, const Columns<T>& usual) const {
    Json json = summary_of(object);
    const Json others = json_of(object, usual, fields_);
    for (const auto& [key, value] : others.items()) {
      if (json.count(key) == 0 && !value.empty()) json[key] = value;
    }
    return json;
  }

  void read_by_pattern() {
    std::vector<std::shared_ptr<T>> all;
    library_.search(all, library_text(arguments_.pattern), criteria_);
    for (const auto& object : all) keep(object);
  }

  void read() {
    if (!filter_) return library_.get(objects_, criteria_);
    library_.for_each<T>(criteria_, [this](const std::shared_ptr<T>& object) {
      keep(object);
      return true;
    });
  }

  void keep(const std::shared_ptr<T>& object) {
    stop_if_asked();
    if (!filter_ || (*filter_)(*object)) objects_.push_back(object);
  }

  const veldra::Library& library_;
  const Arguments& arguments_;
  kit::Fields<T> fields_;
  Columns<T> columns_;  ///< those that were asked for
  std::optional<kit::Filter<T>> filter_;
  std::optional<kit::Order<T>> order_;
  typename veldra::CriteriaOf<T>::type criteria_;
  std::vector<std::shared_ptr<T>> objects_;
  mutable Progress progress_{"listing"};
};

void list(const Arguments& arguments, Host& host) {
  require_sense(arguments);
  reading(arguments.file, [&](const veldra::Library& library) {
    with_class_of(arguments.kind, [&](auto of) {
      using T = typename decltype(of)::type;
      const Listing<T> listing(library, arguments);
      if (arguments.json) return print_json(host.output, listing.json());
      host.output.write(listing.table().text(terminal_width()));
    });
  });
}

}  // namespace

void add_list(Host& host) {
  auto& command = *host.arguments.add_subcommand("list", "List the objects of a kind");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind(command, arguments->kind);
  add_tags(command, arguments->tags,
           "Only materials or compositions with this tag; given several times, with one of them");
  command
      .add_option("--type", arguments->type,
                  fmt::format("Only materials of this type, {}; compositions: wall, floor, roof, "
                              "other; properties: material, composition",
                              naming_help))
      ->check(some_value());
  auto* search = command.add_option(
      "--search", arguments->pattern,
      "Only names like this: % stands for any text, _ for one character; A and a are alike");
  auto* where = command.add_option(
      "--where", arguments->filter,
      "Only objects for which this holds, such as \"U < 0.2 and tag = Roof\": fields are compared "
      "by =, !=, <, <=, >, >= and ~ (contains), whatever the case and the accents, by == and ~~ "
      "exactly, or by 'is empty'; and, or, not and ( ) join comparisons; quotes delimit values, "
      "back-quotes names of fields");
  where->type_name("EXPR");
  command
      .add_option("--sort", arguments->order,
                  "Sort by these fields, with commas between them; -FIELD sorts from high to low")
      ->check(some_value())
      ->type_name("FIELDS");
  command
      .add_option("--columns", arguments->columns,
                  "Show these fields, with commas between them; one that is not there is answered "
                  "with all that are")
      ->check(some_value())
      ->type_name("FIELDS");
  add_json(command, arguments->json);
  add_example(command,
              "veldra list office.lib compositions --where 'U < 0.2' --sort U --columns name,U");
  command.callback([arguments, search, where, &host] {
    arguments->by_pattern = search->count() > 0;
    arguments->filtered = where->count() > 0;
    list(*arguments, host);
  });
}

}  // namespace veldra_tool
