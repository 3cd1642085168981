// A pointer element takes pointers only.
ARRAY POINTER(vq;1)
vq{1}:=5  // error: -10 Variable "vq" has incorrect type!
