// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_FORMAT_MODULES_HPP
#define VELDRA_KIT_EXCHANGE_FORMAT_MODULES_HPP

#include "kit/exchange/recognition.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

class SourceSet;

/// What was read of a source without knowing the others.
class SourceContent {
 public:
  SourceContent() = default;
  SourceContent(const SourceContent&) = delete;
  SourceContent& operator=(const SourceContent&) = delete;
  virtual ~SourceContent() = default;

  virtual bool has_objects() const = 0;

  /// How many materials and compositions are made of it before any is in a library; 0 for tables,
  /// of which each is there at once.
  virtual std::size_t made_together() const { return 0; }
  virtual std::optional<Unit> unit() const { return std::nullopt; }
  virtual bool is_table() const { return false; }
  virtual void add_to(SourceSet& set, SourceReport& report) const = 0;

  /// The same for the last time: it may hold nothing then.
  virtual void give_to(SourceSet& set, SourceReport& report) { add_to(set, report); }
};

/// What was read of a source, by the name of its file.
struct NamedContent {
  const std::string& file;
  const Format& format;
  SourceContent& content;
  bool for_the_last_time;  ///< whether nobody needs the content any more
};

/// The same as `read_together` of what was read already.
Sources read_together(const std::vector<NamedContent>& sources, const SourceRules& rules);

/// How a format is read and written. What it has no function for, it cannot.
struct FormatModule {
  using Recognises = bool (*)(const FileContent& content);
  using Read = std::shared_ptr<SourceContent> (*)(FileContent content);
  using Write = WriteReport (*)(const Library& library, const TextSink& sink,
                                const WriteRules& rules);

  /// Which custom properties are written with a part of a library: those of its objects, or all of
  /// the library. The heading of a property depends on which others there are, and what is read
  /// again is read beside all of them.
  enum class PropertiesOf { Objects, Library };

  FormatModule(const std::string& name, const std::vector<std::string>& endings,
               Recognises recognises, Read read, Write write,
               PropertiesOf properties_of = PropertiesOf::Objects)
      : format{name, endings, read != nullptr, write != nullptr},
        recognises(recognises),
        read(read),
        write(write),
        properties_of(properties_of) {}

  Format format;
  Recognises recognises;
  Read read;
  Write write;
  PropertiesOf properties_of;
};

FormatModule catalogue_module();
FormatModule epjson_module();
FormatModule gbxml_module();
FormatModule honeybee_module();
FormatModule idf_module();
FormatModule ifc_module();
FormatModule openstudio_module();
FormatModule table_module();
FormatModule workbook_module();

/// All of them, in the order in which they are asked whether a content is theirs.
const std::vector<FormatModule>& format_modules();

/// What is of the simulation formats.
class ModelContent : public SourceContent {
 public:
  explicit ModelContent(SourceModel model);

  bool has_objects() const override;
  std::size_t made_together() const override;
  void add_to(SourceSet& set, SourceReport& report) const override;
  void give_to(SourceSet& set, SourceReport& report) override;

 private:
  void tell(SourceReport& report) const;

  SourceModel model_;
};

}  // namespace veldra::kit

#endif
