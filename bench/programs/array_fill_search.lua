local values = {}
for i = 1, 200000 do
  values[i] = i * 2
end
local function find(list, wanted)
  for i = 1, #list do
    if list[i] == wanted then return i end
  end
  return -1
end
local sum = 0
for i = 1, 100 do
  sum = sum + find(values, i * 4000)
end
print(sum)
