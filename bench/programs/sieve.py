def main():
    composite = [False] * 1000001
    count = 0
    for i in range(2, 1000001):
        if not composite[i]:
            count = count + 1
            k = i * i
            while k <= 1000000:
                composite[k] = True
                k = k + i
    print(count)


main()
