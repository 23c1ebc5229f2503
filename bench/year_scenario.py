#!/usr/bin/env python3
"""Writes a scenario that runs a hundred events over a year in steps of one second."""

import json


def main():
    variables = [
        {"device": 1, "variable": 1001, "value": "40.7"},
        {"device": 1, "variable": 1002, "value": "-74"},
    ]
    actions = [
        {"do": "clock", "at": "2024-01-01T00:00:00"},
        {"do": "host", "call": "VmRegisterListener", "result": variables},
        {"do": "create"},
        {"do": "initialize"},
    ]
    for i in range(50):
        daily = [f"Daily {i}", i % 24, i]
        every = [f"Every few days {i}", 1 + i % 5, 28 * i]
        actions.append({"do": "interface", "call": "AddDailyEvent", "args": daily})
        actions.append({"do": "interface", "call": "AddEveryXDaysEvent", "args": every})
    actions.append({"do": "run", "until": "2025-01-01T00:00:00"})
    for action in actions:
        print(json.dumps(action))


if __name__ == "__main__":
    main()
