local a, b, c = 0, 0, 0
for i = 1, 2000000 do
  if i % 2 == 0 then
    if i % 3 == 0 then
      a = a + 1
    else
      if i % 5 == 0 then
        b = b + 1
      else
        c = c + 1
      end
    end
  else
    c = c + 2
  end
end
print(a .. " " .. b .. " " .. c)
