// A method gives back values of any kind.
ALERT(give_text("x"))  // expect: x!
ALERT(Choose(give_date(1)=!2024-02-29!;"yes";"no"))  // expect: yes
ALERT(Choose(give_boolean(5);"yes";"no"))  // expect: yes
$o:=give_object("inner")
ALERT($o.name)  // expect: inner
