// Every array declaration makes an array of the length given.
ARRAY TEXT($text;1)
ARRAY STRING($string;2)
ARRAY REAL($real;3)
ARRAY INTEGER($integer;4)
ARRAY LONGINT($longint;5)
ARRAY BOOLEAN($boolean;6)
ARRAY DATE($date;7)
ARRAY PICTURE($picture;8)
ARRAY POINTER($pointer;9)
ALERT(String(Size of array($text)))  // expect: 1
ALERT(String(Size of array($string)))  // expect: 2
ALERT(String(Size of array($real)))  // expect: 3
ALERT(String(Size of array($integer)))  // expect: 4
ALERT(String(Size of array($longint)))  // expect: 5
ALERT(String(Size of array($boolean)))  // expect: 6
ALERT(String(Size of array($date)))  // expect: 7
ALERT(String(Size of array($picture)))  // expect: 8
ALERT(String(Size of array($pointer)))  // expect: 9
