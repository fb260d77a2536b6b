#!/usr/bin/python3
"""Print the table of writeDoc with one document per row: make_letters.py ROWS TEMPLATE"""
import csv
import sys


def main():
    table = csv.writer(sys.stdout, lineterminator="\n")
    table.writerow(["name", "output", "template"])
    table.writerows([f"Customer {i}", f"letter_{i}.docx", sys.argv[2]] for i in range(1, int(sys.argv[1]) + 1))


if __name__ == "__main__":
    main()
