// Prints the results of Google Benchmark programs, JSON files named on the command line, as one table: each hot path
// beside its bound. By its name `XBound/1`, `XBare/1` or `XPlain/1` bounds `X/1`; a counter `bounds` tells how many of a
// fixed bound it takes.
import { readFileSync } from 'node:fs'
import { basename } from 'node:path'

const milliseconds = { ns: 1e-6, us: 1e-3, ms: 1, s: 1000 }
const kinds = { Bound: 'its bound', Bare: 'the bare library', Plain: 'the plain form' }

function measured(result) {
  const [base, ...rest] = result.name.split('/')
  const args = rest.filter((part) => !/^(process_time|manual_time|real_time|iterations:\d+)$/.test(part))
  const [, stem, kind] = base.match(/^(.*?)(Bound|Bare|Plain)?$/)
  const time = /manual_time|real_time/.test(result.name) ? result.real_time : result.cpu_time
  return { path: [stem, ...args].join('/'), kind, label: result.label, bounds: result.bounds, error: result.error_occurred,
           time: time * milliseconds[result.time_unit] }
}

const shown = (number) => String(Number(number.toPrecision(3)))
const rows = [['hot path', 'ms', 'beside', 'ms', 'ratio']]
for (const file of process.argv.slice(2)) {
  const results = JSON.parse(readFileSync(file, 'utf8')).benchmarks.map(measured)
  for (const ours of results.filter((result) => !result.kind)) {
    const path = `${basename(file, '.json').replace('bench_', '')}: ${ours.path}${ours.label ? ` (${ours.label})` : ''}`
    if (ours.error) {
      rows.push([path, 'not run', '', '', ''])
      continue
    }
    const bounds = results.filter((result) => result.kind && result.path === ours.path)
    if (bounds.length === 0) {
      const ratio = ours.bounds === undefined ? '' : shown(ours.bounds)
      rows.push([path, shown(ours.time), ratio && 'a fixed bound', '', ratio])
    }
    for (const bound of bounds)
      rows.push([path, shown(ours.time), kinds[bound.kind], shown(bound.time), shown(ours.time / bound.time)])
  }
}
const widths = rows[0].map((_, column) => Math.max(...rows.map((row) => row[column].length)))
for (const row of rows) {
  const cells = row.map((cell, i) => (i === 0 || i === 2 ? cell.padEnd(widths[i]) : cell.padStart(widths[i])))
  console.log(cells.join('  ').trimEnd())
}
