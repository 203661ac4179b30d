// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_VELDRA_HPP
#define VELDRA_VELDRA_HPP

/// @file
/// The whole interface of veldra, a library for catalogues of building materials and of the
/// build-ups of walls, floors and roofs that are made from them. Begin with `veldra::Library`.

/// @namespace veldra
/// The namespace of the library. A host needs no other one: `error_kind` tells the errors of the
/// layers below apart.

#include <veldra/asset.hpp>
#include <veldra/composition.hpp>
#include <veldra/criteria.hpp>
#include <veldra/custom_property.hpp>
#include <veldra/errors.hpp>
#include <veldra/exceptions.hpp>
#include <veldra/id_mapping.hpp>
#include <veldra/layer.hpp>
#include <veldra/library.hpp>
#include <veldra/library_manager.hpp>
#include <veldra/material.hpp>
#include <veldra/material_type.hpp>
#include <veldra/object.hpp>
#include <veldra/string.hpp>
#include <veldra/tag.hpp>
#include <veldra/translations.hpp>
#include <veldra/values.hpp>
#include <veldra/version.hpp>

#endif
