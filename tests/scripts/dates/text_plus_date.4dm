// Required: a date behind a text does nothing, and a text behind a date neither.
ALERT("a"+!2024-01-01!)  // expect: a
ALERT(String(Year of(!2024-01-01!+"a")))  // expect: 2024
