// The condition of a While must be a Boolean.
While (1)  // error: -13 Command "" wrong parameter type
End while
