local sum = 0.0
for i = 1, 2000000 do
  sum = sum + ((i * 3) % 7) - 1
end
print(string.format("%d", sum))
