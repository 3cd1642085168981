// A tour of the language as zr runs it. Read it from top to bottom beside what it prints.
// Methods with a name of their own, such as Heading below, are the files beside this one.

Heading("Text")
$name:="Ada"
ALERT("Hello, "+$name+"! Your name has "+String(Length($name))+" letters.")
ALERT(Uppercase($name)+" begins with "+$name[[1]]+" and reads "+Reversed($name)+" from behind.")
ALERT(Replace string("Tea or coffee?";"coffee";"lemonade"))

Heading("Numbers")
// There is no precedence: the line is worked off from left to right, and brackets come first.
ALERT("2+3*4 is "+String(2+3*4)+", 2+(3*4) is "+String(2+(3*4)))
ALERT("17 divided by 5: "+String(17\5)+", remainder "+String(17%5)+", exactly "+String(17/5))
ALERT("2 to the power of 10: "+String(2^10)+", e is about "+String(Round(Exp(1);4)))
ALERT("With a format: "+String(1234567.891;"###,###,##0.00"))

Heading("Dates and times")
$landing:=!1969-07-20!
ALERT("The first people landed on the moon on "+String($landing;3)+".")
ALERT("A thousand days later it was "+String($landing+1000;3)+".")
ALERT("From 20:17:40 to midnight it is "+String(?24:00:00?-?20:17:40?)+".")

Heading("Arrays")
ARRAY TEXT($planets;0)
APPEND TO ARRAY($planets;"Venus")
APPEND TO ARRAY($planets;"Earth")
APPEND TO ARRAY($planets;"Mars")
INSERT IN ARRAY($planets;1)
$planets{1}:="Mercury"
ALERT("There are "+String(Size of array($planets))+" of them, and Earth is number "+String(Find in array($planets;"Earth"))+".")
$line:=""
For ($i;1;Size of array($planets))
	$line:=$line+" "+$planets{$i}
End for
ALERT("In their order:"+$line)

Heading("Objects")
$moon:=New object
$moon.name:="Luna"
$moon.radius:=1737.4
$moon.planet:=New object
$moon.planet.name:="Earth"
ALERT(($moon.name)+" circles "+($moon.planet.name)+" and measures "+String($moon.radius*2)+" km across.")

Heading("Control flow")
$n:=27
$steps:=0
While ($n#1)
	If (($n%2)=0)
		$n:=$n/2
	Else
		$n:=$n*3+1
	End if
	$steps:=$steps+1
End while
ALERT("From 27 down to 1 in "+String($steps)+" steps.")
$line:=""
For ($i;9;15)
	$line:=$line+" "+Fizz buzz($i)
End for
ALERT("From 9 to 15:"+$line)

Heading("Methods")
// A method gets its parameters as $1, $2 and gives back what it leaves in $0. It may call itself.
ALERT("10! is "+String(Factorial(10)))
// A name without $ is a process variable, which every method sees; -> makes a pointer to it.
basket:="apples"
Put in basket(->basket;"pears")
Put in basket(->basket;"plums")
ALERT("In the basket: "+basket)

Heading("When something is wrong")
// An error ends the run, and zr tells where it happened and how it got there: try zr run examples/oops.4dm.
// What can be foreseen is tested before:
ALERT("84/2 is "+Divided(84;2))
ALERT("84/0 is "+Divided(84;0))
C_POINTER($nothing)
If (Is nil pointer($nothing))
	ALERT("The pointer leads nowhere, so it is not followed.")
End if

Heading("That is all")
ALERT("zr commands --supported lists every command that runs.")
