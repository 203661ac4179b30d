// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/drawing.hpp>
#include <veldra/kit/error.hpp>

#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <dlfcn.h>

#include <memory>

namespace veldra::kit {

namespace {

constexpr double points_of_pixel = 72.0 / 96.0;

/// A place and size, as the renderer takes it.
struct Rectangle {
  double x;
  double y;
  double width;
  double height;
};

/// A library that stays loaded, since its types cannot be registered twice.
class Module {
 public:
  explicit Module(const char* file) : file_(file), handle_(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
      throw Error(fmt::format("a PDF needs {}, which is not there; write SVG or HTML instead",
                              quoted(file_)));
    }
  }

  template <class Function>
  void find(Function& function, const char* name) const {
    function = reinterpret_cast<Function>(dlsym(handle_, name));
    if (function == nullptr) {
      throw Error(fmt::format("{} has no {}", quoted(file_), quoted(name)));
    }
  }

 private:
  std::string file_;
  void* handle_;
};

/// What is used of the libraries, by the names of their C interfaces.
struct Renderer {
  Renderer() : cairo("libcairo.so.2"), objects("libgobject-2.0.so.0"), rsvg("librsvg-2.so.2") {
    cairo.find(surface_create, "cairo_pdf_surface_create_for_stream");
    cairo.find(set_metadata, "cairo_pdf_surface_set_metadata");
    cairo.find(surface_finish, "cairo_surface_finish");
    cairo.find(surface_status, "cairo_surface_status");
    cairo.find(surface_destroy, "cairo_surface_destroy");
    cairo.find(context_create, "cairo_create");
    cairo.find(context_destroy, "cairo_destroy");
    objects.find(unref, "g_object_unref");
    rsvg.find(handle_create, "rsvg_handle_new_from_data");
    rsvg.find(set_dpi, "rsvg_handle_set_dpi");
    rsvg.find(intrinsic_size, "rsvg_handle_get_intrinsic_size_in_pixels");
    rsvg.find(render, "rsvg_handle_render_document");
  }

  Module cairo;
  Module objects;
  Module rsvg;

  using Write = int (*)(void* closure, const unsigned char* data, unsigned length);
  void* (*surface_create)(Write, void*, double, double) = nullptr;
  void (*set_metadata)(void*, int, const char*) = nullptr;
  void (*surface_finish)(void*) = nullptr;
  int (*surface_status)(void*) = nullptr;
  void (*surface_destroy)(void*) = nullptr;
  void* (*context_create)(void*) = nullptr;
  void (*context_destroy)(void*) = nullptr;
  void (*unref)(void*) = nullptr;
  void* (*handle_create)(const unsigned char*, std::size_t, void**) = nullptr;
  void (*set_dpi)(void*, double) = nullptr;
  int (*intrinsic_size)(void*, double*, double*) = nullptr;
  int (*render)(void*, void*, const Rectangle*, void**) = nullptr;
};

/// Nothing may be thrown through the libraries.
struct Output {
  std::string text;
  bool complete = true;
};

int append(void* closure, const unsigned char* data, unsigned length) {
  constexpr int write_error = 11;
  auto& output = *static_cast<Output*>(closure);
  try {
    output.text.append(reinterpret_cast<const char*>(data), length);
    return 0;
  } catch (...) {
    output.complete = false;
    return write_error;
  }
}

}  // namespace

std::string pdf_of(const std::string& svg, const std::string& title) {
  constexpr int metadata_title = 0;
  static const Renderer renderer;
  using Owner = std::unique_ptr<void, void (*)(void*)>;
  const auto* data = reinterpret_cast<const unsigned char*>(svg.data());
  const Owner handle(renderer.handle_create(data, svg.size(), nullptr), renderer.unref);
  if (!handle) throw Error("librsvg cannot read the drawing");
  renderer.set_dpi(handle.get(), 96);
  double width = 0;
  double height = 0;
  renderer.intrinsic_size(handle.get(), &width, &height);
  const Rectangle page{0, 0, width * points_of_pixel, height * points_of_pixel};
  Output output;
  const Owner surface(renderer.surface_create(append, &output, page.width, page.height),
                      renderer.surface_destroy);
  renderer.set_metadata(surface.get(), metadata_title, title.c_str());
  const Owner context(renderer.context_create(surface.get()), renderer.context_destroy);
  const bool rendered = renderer.render(handle.get(), context.get(), &page, nullptr) != 0;
  renderer.surface_finish(surface.get());
  if (!rendered || !output.complete || renderer.surface_status(surface.get()) != 0) {
    throw Error("librsvg and cairo cannot make a PDF of the drawing");
  }
  return output.text;
}

}  // namespace veldra::kit
