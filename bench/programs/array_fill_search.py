def main():
    values = [0] * 200000
    for i in range(1, 200001):
        values[i - 1] = i * 2
    total = 0
    for i in range(1, 101):
        try:
            total = total + values.index(i * 4000) + 1
        except ValueError:
            total = total - 1
    print(total)


main()
