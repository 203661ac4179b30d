# SPDX-License-Identifier: GPL-2.0-or-later
"""How Sphinx makes the site. scripts/docs runs it, on a copy of the pages."""

import os
import re
import sys

project = "veldra"
author = "the veldra developers"
release = os.environ["VELDRA_RELEASE"]
version = release

sys.path.insert(0, os.environ["VELDRA_PYTHON_PACKAGE"])

extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc"]
myst_enable_extensions = ["colon_fence"]
myst_heading_anchors = 3
source_suffix = {".md": "markdown"}
root_doc = "index"
exclude_patterns = ["guide/programs"]

breathe_projects = {"veldra": os.environ["VELDRA_DOXYGEN_XML"]}
breathe_default_project = "veldra"
breathe_show_include = False
breathe_show_enumvalue_initializer = True
primary_domain = "cpp"
highlight_language = "cpp"
cpp_id_attributes = ["VELDRA_EXPORT", "VELDRA_KIT_EXPORT"]
add_module_names = False
autodoc_member_order = "bysource"
autodoc_typehints = "signature"
toc_object_entries_show_parents = "hide"

html_theme = "furo"
html_title = f"veldra {release}"
html_static_path = ["static"]
html_css_files = ["style.css"]
html_copy_source = False
html_show_sourcelink = False
html_show_sphinx = False
html_show_copyright = False
html_permalinks_icon = "#"
pygments_style = "friendly"
pygments_dark_style = "monokai"

# Pages also link to what lies outside of docs/: in the site such a link is the name of the file.
OUTSIDE = re.compile(r"\[([^\]]+)\]\((?:\.\./)+(?!docs/)([^)#]+?)/?(?:#[^)]*)?\)")


def name_files_outside(app, docname, source):
    depth = docname.count("/") + 1

    def name(match):
        if match.group(0).split("](")[1].count("../") < depth:
            return match.group(0)
        text, path = match.group(1), match.group(2)
        return f"`{path}`" if text.strip("`") == path else f"{text} (`{path}`)"

    source[0] = OUTSIDE.sub(name, source[0])


# The pages that an index page lists are its part of the table of contents.
LISTED = re.compile(r"^(?:- |\d+\. |\| )\[[^\]]+\]\(([^)#]+)\.md\)", re.M)


def add_contents(app, docname, source):
    if not docname.endswith("index"):
        return
    pages = LISTED.findall(source[0])
    if pages:
        source[0] += "\n\n```{toctree}\n:hidden:\n\n" + "\n".join(pages) + "\n```\n"


def setup(app):
    app.connect("source-read", name_files_outside)
    app.connect("source-read", add_contents)
