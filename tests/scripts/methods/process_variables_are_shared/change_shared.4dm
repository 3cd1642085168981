// Changes variables that every method sees.
vshared:="changed"
<>vshared:="changed as well"
