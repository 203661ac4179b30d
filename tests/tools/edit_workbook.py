#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-2.0-or-later
"""Edits a workbook as a person would: python3 edit_workbook.py FILE WORK [ARGUMENT...]."""
import sys

import openpyxl

HEADING_ROW = 1


def columns_of(sheet):
    return {cell.value: cell.column for cell in sheet[HEADING_ROW]}


def row_of(sheet, name):
    column = columns_of(sheet)["name"]
    for row in range(HEADING_ROW + 1, sheet.max_row + 1):
        if sheet.cell(row, column).value == name:
            return row
    raise SystemExit(f"no row is about {name}")


def set_cell(book, sheet, name, heading, value):
    table = book[sheet]
    value = float(value) if value.replace(".", "", 1).isdigit() else value
    table.cell(row_of(table, name), columns_of(table)[heading]).value = value


def add_row(book, sheet, name):
    table = book[sheet]
    table.cell(table.max_row + 1, columns_of(table)["name"]).value = name


def add_layer(book, sheet, material, thickness):
    table = book[sheet]
    columns = columns_of(table)
    last = table.max_row
    for heading in ("composition", "function"):
        table.cell(last + 1, columns[heading]).value = table.cell(last, columns[heading]).value
    table.cell(last + 1, columns["position"]).value = last
    table.cell(last + 1, columns["material"]).value = material
    table.cell(last + 1, columns["thickness [mm]"]).value = float(thickness)


def tell(book):
    """What a person sees of the workbook."""
    for sheet in book:
        print(sheet.title, sheet.sheet_state, sheet.freeze_panes, sheet.auto_filter.ref)
        if sheet.sheet_state != "visible":
            continue
        for heading, column in columns_of(sheet).items():
            letter = openpyxl.utils.get_column_letter(column)
            if sheet.column_dimensions[letter].hidden:
                print("hidden", heading.split(" [")[0])
        for choice in sheet.data_validations.dataValidation:
            print("choice", choice.sqref, choice.formula1)
        for row in sheet.iter_rows():
            for cell in row:
                if cell.data_type == "f":
                    raise SystemExit(f"{sheet.title}!{cell.coordinate} is a formula")


def main():
    file, work, *arguments = sys.argv[1:]
    book = openpyxl.load_workbook(file)
    {"set": set_cell, "add": add_row, "layer": add_layer, "tell": tell, "save": lambda _: None}[work](
        book, *arguments
    )
    book.save(file)


main()
