local text = string.rep("the quick brown fox jumps over the lazy dog. ", 33000)
local count = 0
for i = 1, #text do
  if text:sub(i, i) == "o" then
    count = count + 1
  end
end
print(count)
