// SPDX-License-Identifier: GPL-2.0-or-later
//
// Reads what the program writes as IFC with another reader, web-ifc, and compares it with what the
// program writes as JSON: names, layers, thicknesses, functions and properties. Each instance must
// be one of the schema.
//
//   ifc_read_back.mjs <the program> <sources>...
//
// web-ifc is where scripts/setup puts it, or in the folder that the environment variable
// VELDRA_NODE_MODULES names; the test is skipped where it is not there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const skipped = 77;
const own = fileURLToPath(new URL('../../build/node/node_modules', import.meta.url));
const modules = process.env.VELDRA_NODE_MODULES ?? own;
if (!existsSync(join(modules, 'web-ifc'))) {
  console.log(`there is no web-ifc in ${modules}`);
  process.exit(skipped);
}
const webIfc = createRequire(resolve(modules, '..', 'package.json'))('web-ifc');

/// What the program writes of the sources, in a unit, as IFC and as JSON.
function written(program, sources, unit, folder) {
  const library = join(folder, `${unit}.lib`);
  const run = (...command) => execFileSync(program, ['--no-config', ...command], { stdio: 'pipe' });
  run('import', library, ...sources, '--unit', unit);
  const model = join(folder, `${unit}.ifc`);
  run('export', library, '-o', model);
  const json = join(folder, `${unit}.json`);
  run('export', library, '-o', json);
  return { model: new Uint8Array(readFileSync(model)), json: JSON.parse(readFileSync(json)) };
}

/// A model, by the classes of its instances.
class Model {
  constructor(api, bytes) {
    this.api = api;
    this.id = api.OpenModel(bytes);
    assert.equal(api.GetModelSchema(this.id), 'IFC4');
  }

  all(type) {
    const ids = this.api.GetLineIDsWithType(this.id, type);
    return Array.from({ length: ids.size() }, (_, i) => this.api.GetLine(this.id, ids.get(i), true));
  }

  /// Each instance is of a class, and has as many values as that has fields. One of units is
  /// computed and counts as no value.
  expectSchema() {
    const ids = this.api.GetAllLines(this.id);
    assert.ok(ids.size() > 0);
    for (let i = 0; i < ids.size(); ++i) {
      const name = this.api.GetNameFromTypeCode(this.api.GetLineType(this.id, ids.get(i)));
      assert.match(name, /^Ifc/, `instance ${ids.get(i)} is of no class`);
      const { expressID, type, ...fields } = this.api.GetLine(this.id, ids.get(i));
      const values = this.api.GetRawLineData(this.id, ids.get(i)).arguments.length;
      const computed = name === 'IfcSIUnit' ? 1 : 0;
      assert.equal(values, Object.keys(fields).length - computed, name);
    }
  }
}

function propertiesOf(model) {
  const properties = {};
  for (const set of model.all(webIfc.IFCMATERIALPROPERTIES)) {
    const values = (properties[set.Material.Name.value] ??= {});
    for (const each of set.Properties) values[each.Name.value] = each.NominalValue.value;
  }
  return properties;
}

const known = {
  'Thermal conductivity [W/(m K)]': 'ThermalConductivity',
  'Density [kg/m3]': 'MassDensity',
  'Specific heat [J/(kg K)]': 'SpecificHeatCapacity',
};

/// Numbers of the JSON are texts in custom values.
function expectMaterials(model, json) {
  const names = model.all(webIfc.IFCMATERIAL).map((material) => material.Name.value);
  assert.deepEqual(names.sort(), json.materials.map((material) => material.name).sort());
  const properties = propertiesOf(model);
  let compared = 0;
  for (const material of json.materials) {
    for (const [name, value] of Object.entries(material.custom_values ?? {})) {
      const found = properties[material.name][known[name] ?? name];
      assert.equal(typeof found === 'number' ? Number(value) : value, found, `${material.name}: ${name}`);
      ++compared;
    }
  }
  assert.ok(compared > 0);
}

const keywords = {
  wall: webIfc.IFCWALLTYPE,
  floor: webIfc.IFCSLABTYPE,
  roof: webIfc.IFCROOFTYPE,
  other: webIfc.IFCBUILDINGELEMENTPROXYTYPE,
};

function expectCompositions(model, json) {
  const sets = {};
  for (const relation of model.all(webIfc.IFCRELASSOCIATESMATERIAL)) {
    const set = relation.RelatingMaterial;
    sets[set.LayerSetName.value] = { set, type: relation.RelatedObjects[0].type };
  }
  assert.equal(Object.keys(sets).length, json.compositions.length);
  assert.ok(json.compositions.length > 0);
  for (const composition of json.compositions) {
    const { set, type } = sets[composition.name];
    assert.equal(type, keywords[composition.type ?? 'other'], composition.name);
    const layers = set.MaterialLayers.map((layer) => ({
      material: layer.Material.Name.value,
      thickness: layer.LayerThickness.value,
      function: layer.Category?.value === 'LoadBearing' ? 1 : 0,
    }));
    const expected = composition.layers.map((layer) => ({
      material: layer.material,
      thickness: layer.thickness ?? 0,
      function: layer.function ?? 0,
    }));
    assert.deepEqual(layers, expected, composition.name);
  }
}

const [program, ...sources] = process.argv.slice(2);
const folder = mkdtempSync(join(tmpdir(), 'veldra-ifc-'));
try {
  const api = new webIfc.IfcAPI();
  await api.Init();
  for (const unit of ['mm', 'in']) {
    const { model: bytes, json } = written(program, sources, unit, folder);
    const model = new Model(api, bytes);
    model.expectSchema();
    expectMaterials(model, json);
    expectCompositions(model, json);
    console.log(`${unit}: ${json.materials.length} materials, ${json.compositions.length} compositions`);
  }
} finally {
  rmSync(folder, { recursive: true });
}
