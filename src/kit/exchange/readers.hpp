// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_READERS_HPP
#define VELDRA_KIT_EXCHANGE_READERS_HPP

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
  virtual std::optional<Unit> unit() const { return std::nullopt; }
  virtual void add_to(SourceSet& set, SourceReport& report) const = 0;
};

/// How a format is read.
struct Reader {
  Format format;
  bool (*recognises)(const FileContent& content);
  std::shared_ptr<const SourceContent> (*read)(FileContent content);
};

/// What was read of a source, by the name of its file.
struct NamedContent {
  const std::string& file;
  const Format& format;
  const SourceContent& content;
};

/// The same as `read_together` of what was read already.
Sources read_together(const std::vector<NamedContent>& sources, const SourceRules& rules);

Reader catalogue_reader();
Reader epjson_reader();
Reader idf_reader();

/// What is of the simulation formats.
class ModelContent : public SourceContent {
 public:
  explicit ModelContent(SourceModel model);

  bool has_objects() const override;
  void add_to(SourceSet& set, SourceReport& report) const override;

 private:
  SourceModel model_;
};

}  // namespace veldra::kit

#endif
