#ifndef VELDRA_VELDRA_HPP
#define VELDRA_VELDRA_HPP

/// The whole interface of veldra, a library for catalogues of building materials and build-ups.

#include <veldra/asset.hpp>
#include <veldra/composition.hpp>
#include <veldra/criteria.hpp>
#include <veldra/customproperty.hpp>
#include <veldra/exceptions.hpp>
#include <veldra/idmapping.hpp>
#include <veldra/layer.hpp>
#include <veldra/library.hpp>
#include <veldra/librarymanager.hpp>
#include <veldra/material.hpp>
#include <veldra/materialtype.hpp>
#include <veldra/object.hpp>
#include <veldra/string.hpp>
#include <veldra/tag.hpp>
#include <veldra/translations.hpp>
#include <veldra/values.hpp>

#endif
