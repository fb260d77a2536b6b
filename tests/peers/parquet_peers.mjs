// Written Parquet files as DuckDB and hyparquet read them: node parquet_peers.mjs CORVANTA
//
// Needs the packages @duckdb/node-api, hyparquet and hyparquet-compressors (npm install, in the folder it is
// started from); without them it says so and ends with status 77.
import { execFileSync } from 'node:child_process'
import { mkdtempSync, readFileSync, writeFileSync } from 'node:fs'
import { createRequire } from 'node:module'
import { tmpdir } from 'node:os'
import { join } from 'node:path'
import { pathToFileURL } from 'node:url'

const corvanta = process.argv[2]
const here = createRequire(join(process.cwd(), 'package.json'))
let peers
try {
  const load = async name => import(pathToFileURL(here.resolve(name)))
  peers = { duck: await load('@duckdb/node-api'), hyparquet: await load('hyparquet'),
            codecs: (await load('hyparquet-compressors')).compressors }
} catch (error) {
  console.log(`skipped: ${error.message}`)
  process.exit(77)
}
const folder = mkdtempSync(join(tmpdir(), 'corvanta_parquet_'))
const ROWS = 5000
const TEXTS = ['plain', '', 'Żółć 東京 😀', 'line\nfeed', 'x'.repeat(900), null]

/** Rows of key, float, text and a column that is always missing. */
function table() {
  const rows = []
  for (let i = 0; i < ROWS; i++) {
    const missing = i % 7 === 0 || Math.floor(i / 900) === 2
    rows.push([missing ? null : (i * 858993) % 4294967294, missing ? null : i / 3 - 500, TEXTS[i % TEXTS.length], null])
  }
  return rows
}

function run(graph) {
  writeFileSync(join(folder, 'case.graph'), graph)
  execFileSync(corvanta, ['run', join(folder, 'case.graph')])
}

function write(rows, header, types, attributes) {
  const field = value => value === null ? '' : typeof value === 'string' ? `"${value.replaceAll('"', '""')}"` : String(value)
  const lines = rows.map(row => row.map(field).join(','))
  writeFileSync(join(folder, 'in.csv'), [header.join(','), ...lines].join('\n') + '\n')
  run(`<graph version='4.11'><action id='in'><readCSV fileName='in.csv' types='${types}'/></action>
       <action id='out'><writeParquet file='out.parquet' ${attributes}/></action><link from='in:0' to='out:0'/></graph>`)
  return join(folder, 'out.parquet')
}

/** Keys of INT32 columns without a mark are signed to foreign readers. */
function equal(mine, theirs, isSigned) {
  if (mine === null || theirs === null || theirs === undefined) return mine === null && (theirs === null || theirs === undefined)
  if (typeof mine === 'string') return mine === theirs
  return Number(theirs) === (isSigned ? mine | 0 : mine)
}

function compare(what, rows, theirs, isSigned) {
  if (theirs.length !== rows.length) throw new Error(`${what}: ${theirs.length} rows instead of ${rows.length}`)
  rows.forEach((row, i) => row.forEach((value, j) => {
    if (!equal(value, theirs[i][j], isSigned && j === 0)) {
      throw new Error(`${what}: row ${i}, column ${j}: ${theirs[i][j]} instead of ${value}`)
    }
  }))
}

const connection = await (await peers.duck.DuckDBInstance.create()).connect()
async function compareBoth(what, rows, header, types, attributes, isSigned = false) {
  const file = write(rows, header, types, attributes)
  const result = await connection.runAndReadAll(`select * from read_parquet('${file}')`)
  compare(`DuckDB, ${what}`, rows, result.getRows(), isSigned)
  const bytes = readFileSync(file)
  const buffer = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length)
  const objects = await peers.hyparquet.parquetReadObjects({ file: buffer, compressors: peers.codecs })
  compare(`hyparquet, ${what}`, rows, objects.map(o => header.map(name => o[name])), isSigned)
}

const options = [...[0, 1, 2].map(k => `keyStorage='${k}'`), ...[1, 2, 3, 4, 5].map(c => `codec='${c}'`),
                 "dictionaryPages='1' statistics='1'", "dictionaryPages='1' pageSize='1'", "pageSize='1' rowGroupSize='1'"]
for (const attributes of options) {
  await compareBoth(attributes, table(), ['key', 'float', 'text', 'none'], 'K,F,U,U', attributes, attributes === "keyStorage='1'")
}
const wide = Array.from({ length: 1000 }, (_, i) => `column ${i}`)
await compareBoth('1000 columns', [wide.map((_, i) => i), wide.map(() => null)], wide, wide.map(() => 'K').join(','), '')
const file = write([], ['key', 'text'], 'K,U', '')
const empty = await connection.runAndReadAll(`select count(*) from read_parquet('${file}')`)
if (Number(empty.getRows()[0][0]) !== 0) throw new Error('no rows: DuckDB sees some')
console.log(`${options.length + 2} tables read alike by DuckDB and hyparquet`)
