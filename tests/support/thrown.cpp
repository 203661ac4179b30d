// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/thrown.hpp"

#include <veldra/veldra.hpp>

#include <utf8.h>
#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <memory>
#include <new>
#include <stdexcept>

namespace veldra_tests {

namespace {

template <class Exception>
Thrown ours(const char* type, const Exception& error) {
  return {type, veldra::String(error.what()).utf8(), 0, 0};
}

Thrown standard(const char* type, const std::exception& error) {
  return {type, error.what(), 0, 0};
}

Thrown call_and_catch(const std::function<void()>& call) {
  try {
    call();
    return {};
  } catch (const veldra::LibraryReadOnly& error) {
    return ours("veldra::LibraryReadOnly", error);
  } catch (const veldra::ObjectNotFound& error) {
    return ours("veldra::ObjectNotFound", error);
  } catch (const veldra::ObjectInUse& error) {
    return ours("veldra::ObjectInUse", error);
  } catch (const veldra::ObjectNotUnique& error) {
    return {"veldra::ObjectNotUnique", error.text().utf8(), 0, 0};
  } catch (const veldra::InappropriateCustomProperty& error) {
    return ours("veldra::InappropriateCustomProperty", error);
  } catch (const veldra::NotALibrary& error) {
    return ours("veldra::NotALibrary", error);
  } catch (const veldra::FileExists& error) {
    return ours("veldra::FileExists", error);
  } catch (const veldra::OtherLibrary& error) {
    return ours("veldra::OtherLibrary", error);
  } catch (const veldra::SameFile& error) {
    return ours("veldra::SameFile", error);
  } catch (const veldra::Interrupted& error) {
    return ours("veldra::Interrupted", error);
  } catch (const veldra::DatabaseError& error) {
    Thrown thrown = ours("veldra::UnknownError", error);
    thrown.code = error.code();
    return thrown;
  } catch (const veldra::UnknownError& error) {
    return ours("veldra::UnknownError", error);
  } catch (const odb::sqlite::database_exception& error) {
    return {"odb::sqlite::database_exception", error.message(), error.error(),
            error.extended_error()};
  } catch (const odb::unknown_schema_version& error) {
    return standard("odb::unknown_schema_version", error);
  } catch (const odb::object_not_persistent& error) {
    return standard("odb::object_not_persistent", error);
  } catch (const odb::object_already_persistent& error) {
    return standard("odb::object_already_persistent", error);
  } catch (const odb::already_in_transaction& error) {
    return standard("odb::already_in_transaction", error);
  } catch (const odb::transaction_already_finalized& error) {
    return standard("odb::transaction_already_finalized", error);
  } catch (const odb::timeout& error) {
    return standard("odb::timeout", error);
  } catch (const odb::deadlock& error) {
    return standard("odb::deadlock", error);
  } catch (const odb::no_type_info& error) {
    return standard("odb::no_type_info", error);
  } catch (const odb::null_pointer& error) {
    return standard("odb::null_pointer", error);
  } catch (const odb::exception& error) {
    return standard("odb::exception", error);
  } catch (const utf8::invalid_utf8& error) {
    return standard("utf8::invalid_utf8", error);
  } catch (const utf8::invalid_utf16& error) {
    return standard("utf8::invalid_utf16", error);
  } catch (const utf8::exception& error) {
    return standard("utf8::exception", error);
  } catch (const std::bad_weak_ptr& error) {
    return standard("std::bad_weak_ptr", error);
  } catch (const std::bad_alloc& error) {
    return standard("std::bad_alloc", error);
  } catch (const std::out_of_range& error) {
    return standard("std::out_of_range", error);
  } catch (const std::runtime_error& error) {
    return standard("std::runtime_error", error);
  } catch (const std::exception& error) {
    return standard("std::exception", error);
  } catch (...) {
    return {"unknown", "", 0, 0};
  }
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Thrown& thrown) {
  if (thrown.type.empty()) return out << "nothing was thrown";
  return out << thrown.type << " (" << thrown.text << ", " << thrown.code << "/" << thrown.extended
             << ")";
}

Thrown thrown_by(const std::function<void()>& call) { return call_and_catch(call); }

}  // namespace veldra_tests
