// A method takes any number of parameters.
ALERT(join_twelve("a";"b";"c";"d";"e";"f";"g";"h";"i";"j";"k";"l"))  // expect: abcdefghijkl
