// SPDX-License-Identifier: GPL-2.0-or-later
#include "errors.hpp"

#include "text.hpp"

#include <veldra/errors.hpp>
#include <veldra/exceptions.hpp>
#include <veldra/kit/exchange.hpp>
#include <veldra/kit/fields.hpp>
#include <veldra/kit/plan.hpp>
#include <veldra/kit/select.hpp>

#include <unistd.h>

#include <cerrno>
#include <new>
#include <stdexcept>

namespace veldra::python {

namespace {

constexpr int cannot_open = 14;

/// An instance of an exception class of `veldra._errors`.
py::object made(const char* name, const std::string& sentence, const About& about) {
  const py::object type = py::module_::import("veldra._errors").attr(name);
  std::string text = about.file.empty() ? "" : "'" + about.file + "': ";
  if (about.object && !about.object.is_none() && !PyType_Check(about.object.ptr())) {
    text += std::string(py::str(about.object)) + ": ";
  }
  py::object error = type(text + sentence);
  if (!about.file.empty()) error.attr("file") = about.file;
  if (about.object) error.attr("object") = about.object;
  return error;
}

[[noreturn]] void raise_made(const py::object& error) {
  PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
  throw py::error_already_set();
}

/// The class and the sentence for an error of the library.
struct Kind {
  const char* name;
  const char* sentence;  ///< null for that of the error
};

Kind kind_of(const std::exception_ptr& error) {
  switch (error_kind(error)) {
    case ErrorKind::Busy:
      return {"Busy", "another program, or another handle, holds the file"};
    case ErrorKind::ReadOnly:
      return {"ReadOnly", "the library can only be read"};
    case ErrorKind::Full:
      return {"Full", "the disk is full"};
    case ErrorKind::Damaged:
      return {"Damaged", nullptr};
    case ErrorKind::NotALibrary:
      return {"NotALibrary", "the file is no library"};
    case ErrorKind::UnknownVersion:
      return {"UnknownVersion", "the file was made by a release that this one does not know"};
    case ErrorKind::NotFound:
      return {"NotFound", "it is not in the library"};
    case ErrorKind::InUse:
      return {"InUse", "another object refers to it"};
    case ErrorKind::NotUnique:
      return {"NotUnique", "another object has the same name"};
    case ErrorKind::MalformedText:
      return {"MalformedText", "a text is malformed"};
    case ErrorKind::Interrupted:
      return {"Interrupted", "the operation was interrupted, and its changes were taken back"};
    case ErrorKind::Transaction:
      return {"TransactionError",
              "a transaction or snapshot is open that must not be, or has ended by itself"};
    case ErrorKind::OutOfMemory:
    case ErrorKind::Other:
      break;
  }
  return {"Error", nullptr};
}

/// A file that cannot be opened is not there, or something else keeps it from being opened.
[[noreturn]] void raise_cannot_open(const About& about) {
  if (access(about.file.c_str(), F_OK) != 0 && errno == ENOENT) {
    raise("FileMissing", "there is no such file", about);
  }
  raise("CannotOpen", "the file cannot be opened or made", about);
}

[[noreturn]] void raise_of_library(const std::exception_ptr& error, const About& about) {
  const bool is_other = error_kind(error) == ErrorKind::Other;
  if (is_other && (error_code(error) & 0xFF) == cannot_open) raise_cannot_open(about);
  const Kind kind = kind_of(error);
  const py::object result =
      made(kind.name, kind.sentence != nullptr ? kind.sentence : error_text(error), about);
  result.attr("code") = error_code(error);
  raise_made(result);
}

/// Those about a second file, which a kind does not tell.
[[noreturn]] void raise_of_file(const char* name, const char* sentence, const FileError& error,
                                const About& about) {
  raise(name, sentence, {error.filename().utf8(), about.object});
}

[[noreturn]] void raise_filter_error(const kit::FilterError& error) {
  const py::object result = made("FilterError", error.what(), {});
  result.attr("position") = error.position();
  raise_made(result);
}

[[noreturn]] void raise_source_error(const kit::SourceError& error) {
  const py::object result = made("SourceError", error.what(), {});
  result.attr("file") = py::bytes(error.problem().file).attr("decode")("utf-8", "replace");
  result.attr("line") = error.problem().line;
  raise_made(result);
}

/// Those of the kit, whose sentences say all.
[[noreturn]] void raise_of_kit(const std::exception_ptr& error, const About& about) {
  const About silent{"", {}};
  try {
    std::rethrow_exception(error);
  } catch (const kit::FieldError& known) {
    const py::object result = made("FieldError", known.what(), silent);
    result.attr("field") = known.field();
    if (about.object) result.attr("object") = about.object;
    raise_made(result);
  } catch (const kit::UnknownField& known) {
    raise("UnknownField", known.what());
  } catch (const kit::FilterError& known) {
    raise_filter_error(known);
  } catch (const kit::SourceError& known) {
    raise_source_error(known);
  } catch (const kit::PlanError& known) {
    raise("PlanError", known.what(), {about.file, {}});
  } catch (const kit::Error& known) {
    raise("InvalidValue", known.what());
  }
}

}  // namespace

void raise(const char* name, const std::string& sentence, const About& about) {
  raise_made(made(name, sentence, about));
}

void raise(const std::exception_ptr& error, const About& about) {
  try {
    std::rethrow_exception(error);
  } catch (const py::error_already_set&) {
    throw;
  } catch (const py::builtin_exception&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const kit::Error&) {
    raise_of_kit(error, about);
  } catch (const FileExists& known) {
    raise_of_file("FileExists", "the file is there already", known, about);
  } catch (const OtherLibrary& known) {
    raise_of_file("OtherLibrary", "the file is a library with another GUID", known, about);
  } catch (const SameFile& known) {
    raise_of_file("SameFile", "the file is that of the library itself", known, about);
  } catch (const NotALibrary& known) {
    raise_of_file("NotALibrary", "the file is no library", known, about);
  } catch (const ObjectNotUnique& known) {
    raise("NotUnique",
          known.text().empty() ? "another object has the same name"
                               : "another object has the same code",
          about);
  } catch (const Interrupted&) {
    // The handler of the signal says what comes of Ctrl-C.
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    raise_of_library(error, about);
  } catch (...) {
    if (error_kind(error) == ErrorKind::OutOfMemory) throw std::bad_alloc();
    if (error_kind(error) == ErrorKind::Interrupted && PyErr_CheckSignals() != 0) {
      throw py::error_already_set();
    }
    raise_of_library(error, about);
  }
}

void translate_errors() {
  py::register_exception_translator([](std::exception_ptr error) {
    const bool is_ours = error_kind(error) != ErrorKind::Other;
    try {
      std::rethrow_exception(error);
    } catch (const kit::Error&) {
    } catch (const Exception&) {
    } catch (...) {
      if (!is_ours || error_kind(error) == ErrorKind::OutOfMemory) throw;
    }
    try {
      raise(error, {});
    } catch (py::error_already_set& raised) {
      raised.restore();
    }
  });
}

Text text_of(py::handle text) {
  if (!PyUnicode_Check(text.ptr())) {
    throw py::type_error("a str is needed, not " +
                         std::string(py::str(py::type::of(text).attr("__name__"))));
  }
  Py_ssize_t size = 0;
  const char* const utf8 = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (utf8 == nullptr) {
    PyErr_Clear();
    raise("MalformedText",
          "the text " + std::string(py::repr(text)) + " has a surrogate without its partner");
  }
  std::string result(utf8, static_cast<std::size_t>(size));
  if (result.find('\0') != std::string::npos) {
    raise("MalformedText", "the text " + std::string(py::repr(text)) + " has a zero character");
  }
  return {result};
}

FileName file_name_of(py::handle path) {
  auto name = py::reinterpret_steal<py::object>(PyOS_FSPath(path.ptr()));
  if (!name) throw py::error_already_set();
  if (PyBytes_Check(name.ptr())) {
    name =
        py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(PyBytes_AS_STRING(name.ptr())));
    if (!name) throw py::error_already_set();
  }
  FileName result;
  result.utf8 = text_of(name).utf8;
  return result;
}

}  // namespace veldra::python
