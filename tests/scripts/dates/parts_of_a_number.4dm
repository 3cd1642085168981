// Year of takes a date only.
$x:=Year of(2024)  // error: -13 Command "Year of" wrong parameter type
