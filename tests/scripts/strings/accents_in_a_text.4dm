// A text holds any character.
ALERT("Grüße, señor – 漢字")  // expect: Grüße, señor – 漢字
ALERT(String(Length("äöü")))  // expect: 3
