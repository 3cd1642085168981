// Fizz buzz (number) -> Fizz, Buzz or the number. The branches of a Case of are tried in their order.
Case of
	: (($1%15)=0)
		$0:="Fizz buzz"
	: (($1%3)=0)
		$0:="Fizz"
	: (($1%5)=0)
		$0:="Buzz"
	Else
		$0:=String($1)
End case
