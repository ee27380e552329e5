// Prints the cells of Arrow streams as the tests write them, one row a line, with tabs between: an independent reader.
// Usage: node cells.mjs FILE...

import { readFileSync } from "node:fs";
import { tableFromIPC, DataType } from "apache-arrow";

function decimalText(words, scale) {
  let units = words.reduce((sum, word, index) => sum + (BigInt(word) << BigInt(32 * index)), 0n);
  units = BigInt.asIntN(128, units);
  const digits = (units < 0n ? -units : units).toString().padStart(scale + 1, "0");
  const whole = digits.slice(0, digits.length - scale);
  const fraction = digits.slice(digits.length - scale).replace(/0+$/, "");
  return (units < 0n ? "-" : "") + whole + (fraction ? "." + fraction : "");
}

function cellText(value, type) {
  if (value === null) return "null";
  if (DataType.isDecimal(type)) return decimalText([...value], type.scale);
  if (DataType.isTimestamp(type)) return new Date(Number(value)).toISOString().slice(0, 19).replace("T", " ");
  return String(value);
}

for (const file of process.argv.slice(2)) {
  const table = tableFromIPC(readFileSync(file));
  console.log(table.schema.fields.map((field) => field.name).join("\t"));
  for (let row = 0; row < table.numRows; ++row)
    console.log(table.schema.fields.map((field, column) => cellText(table.getChildAt(column).get(row), field.type)).join("\t"));
}
