def main():
    a = b = c = 0.0
    for i in range(1, 2000001):
        if i % 2 == 0:
            if i % 3 == 0:
                a = a + 1
            else:
                if i % 5 == 0:
                    b = b + 1
                else:
                    c = c + 1
        else:
            c = c + 2
    print(int(a), int(b), int(c))


main()
