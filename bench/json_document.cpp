// SPDX-License-Identifier: GPL-2.0-or-later
#include "otherwise.hpp"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace veldra_bench {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(NamedRecord, id, name)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PropertyRecord, id, name, object_type)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(ColorRecord, red, green, blue, alpha)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PatternRecord, type, name, scale, angle, cross, color)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(ValueRecord, property, value)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(MaterialRecord, id, name, description, type, comments, code,
                                   cost, keynote, label, manufacturer, mark, model, url,
                                   classification, shading_use_appearance, shading_color,
                                   surface_pattern, alignment_x, alignment_y, cut_pattern,
                                   cut_layer, appearance, function, allow_custom_thickness, tags,
                                   thicknesses, values)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LayerRecord, material, function, thickness)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(CompositionRecord, id, name, description, type, entity_layer,
                                   comments, first_core_layer, last_core_layer, structural_layer,
                                   has_variable_layer, variable_layer, variable_layer_min_thickness,
                                   has_variable_layer_max_thickness, variable_layer_max_thickness,
                                   tags, layers, values)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Document, tags, types, layers, properties, materials,
                                   compositions)

namespace {

/// A file or folder that is open as long as this lives.
class OpenFile {
 public:
  OpenFile(const std::string& path, int flags) : file_(::open(path.c_str(), flags, 0644)) {
    if (file_ < 0) throw std::runtime_error("cannot open " + path);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { ::close(file_); }

  void write(const std::string& text) const {
    for (std::size_t done = 0; done != text.size();) {
      const ssize_t written = ::write(file_, text.data() + done, text.size() - done);
      if (written < 0) throw std::runtime_error("cannot write the document");
      done += static_cast<std::size_t>(written);
    }
  }

  void sync() const {
    if (::fsync(file_) != 0) throw std::runtime_error("cannot sync the document");
  }

 private:
  int file_;
};

}  // namespace

void write_json(const Document& document, const std::string& path) {
  const std::string beside = path + ".new";
  {
    const OpenFile file(beside, O_WRONLY | O_CREAT | O_TRUNC);
    file.write(nlohmann::json(document).dump());
    file.sync();
  }
  std::filesystem::rename(beside, path);
  OpenFile(std::filesystem::path(path).parent_path().string(), O_RDONLY | O_DIRECTORY).sync();
}

Document read_json(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return nlohmann::json::parse(file).get<Document>();
}

bool has_json() { return true; }

}  // namespace veldra_bench
