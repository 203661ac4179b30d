# SPDX-License-Identifier: GPL-2.0-or-later
# %% [markdown]
# # A first library in Python
#
# A library is one file that holds materials and the build-ups that are made from them. This tutorial
# makes one, looks at it, changes it and brings a supplier's materials in.

# %%
import veldra

library = veldra.create("tutorial.lib", unit="mm")
library

# %% [markdown]
# ## Materials and build-ups
#
# Conductivities are in W/(m K), densities in kg/m3, thicknesses in the unit of the library. Saving a
# build-up saves its materials as well.

# %%
brick = veldra.Material("Brick", type="Masonry", conductivity=0.5, density=1400)
wool = veldra.Material("Mineral wool", conductivity=0.035, density=60, tags=["insulation"])
plaster = veldra.Material("Plaster", conductivity=0.57, density=1300)
layers = [(plaster, 15), (wool, 160), (brick, 240), (plaster, 15)]
wall = library.save(veldra.Composition("Outer wall", type="wall", layers=layers))
wall

# %% [markdown]
# ## Figures and pictures
#
# Figures follow from the layers. A section shows itself in a notebook.

# %%
print(f"U = {wall.U:.3f} W/(m2 K)")

# %%
wall.section()

# %% [markdown]
# More insulation has a smaller U-value. Layers are a list that writes through to the build-up.

# %%
for thickness in (100, 160, 220):
    wall.layers[1].thickness = thickness
    print(f"{thickness} mm: U = {wall.U:.3f} W/(m2 K)")
_ = wall.save()

# %% [markdown]
# ## Finding
#
# Filters are those of the program.

# %%
[material.name for material in library.materials.where("conductivity < 0.1 or tag = insulation")]

# %% [markdown]
# ## Plans
#
# What another library would change is seen first, and done then, in full or not at all.

# %%
supplier = veldra.create(":memory:", unit="mm")
supplier.save(veldra.Material("Brick", type="Masonry", conductivity=0.45, density=1200))
supplier.save(veldra.Material("Clay plaster", conductivity=0.8, density=1700))
plan = library.plan(supplier, on_clash="overwrite")
plan

# %%
copied = plan.apply()
len(library.materials), library.materials["Brick"].conductivity

# %% [markdown]
# Libraries are closed at the end of a `with`, or by `close`.

# %%
library.close()
