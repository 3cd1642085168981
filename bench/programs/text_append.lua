-- Lua's texts do not grow in place: its own idiom is a table of parts.
local parts, part = {}, "xy"
for i = 1, 1000000 do
  parts[#parts + 1] = part
  parts[#parts + 1] = ";"
end
print(#table.concat(parts))
