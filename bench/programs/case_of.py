def main():
    hits = rest = 0
    for i in range(1, 1500001):
        k = i % 8
        if k == 0:
            hits = hits + 1
        elif k == 1:
            hits = hits + 2
        elif k == 2:
            hits = hits + 3
        elif k == 3:
            hits = hits + 4
        elif k == 4:
            hits = hits + 5
        else:
            rest = rest + 1
    print(hits, rest)


main()
