local composite, count = {}, 0
for i = 1, 1000000 do composite[i] = false end
for i = 2, 1000000 do
  if not composite[i] then
    count = count + 1
    local k = i * i
    while k <= 1000000 do
      composite[k] = true
      k = k + i
    end
  end
end
print(count)
