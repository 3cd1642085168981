local hits, rest = 0, 0
for i = 1, 1500000 do
  local k = i % 8
  if k == 0 then
    hits = hits + 1
  elseif k == 1 then
    hits = hits + 2
  elseif k == 2 then
    hits = hits + 3
  elseif k == 3 then
    hits = hits + 4
  elseif k == 4 then
    hits = hits + 5
  else
    rest = rest + 1
  end
end
print(hits .. " " .. rest)
