#!/usr/bin/env python3
"""What the account service may answer: accounts as the one client remembers them that alone uses them.

Whatever was done while the service failed may have happened or not, so each account is a set of worlds. An answer keeps
the worlds that it agrees with; where none is left, the service is wrong.
"""
from dataclasses import dataclass, replace

DONE, IN_USE, SHORT, NO_USER, WRONG, NO_LETTER, NO_MAIL, FAILED = 0, 2, 3, 4, 5, 6, 14, 20
FAILURES = 10  # that the brake takes from an account


def key(text):
    return "".join(c.lower() for c in text if c.isascii() and c.isalnum())[:16]


@dataclass(frozen=True)
class World:
    """One account as it may be. Without a password there is none."""
    password: str = ""
    email: str = ""
    computers: frozenset = frozenset()
    tokens: frozenset = frozenset()

    def create(self, user, password, email):
        if not key(user):
            return NO_LETTER, self
        if len(key(password)) < 6:
            return SHORT, self
        if "@" not in email:
            return NO_MAIL, self
        if self.password:
            again = (key(password), email.strip().lower()) == (self.password, self.email)
            return (DONE if again else IN_USE), self
        return DONE, World(key(password), email.strip().lower())

    def prove(self, password):
        return NO_USER if not self.password else DONE if key(password) == self.password else WRONG

    def sign_in(self, password, computer):
        status = self.prove(password)
        return (status, int(computer not in self.computers)) if status == DONE else (status, None), self

    def name(self, password, computer):
        status = self.prove(password)
        return status, replace(self, computers=self.computers | {computer}) if status == DONE else self

    def open(self, password, token):
        status = self.prove(password)
        return status, replace(self, tokens=self.tokens | {token}) if status == DONE and token else self

    def delete(self):
        return (DONE if self.password else NO_USER), World()

    def page(self, token):
        return 200 if token in self.tokens else 403, self

    def end(self, token):
        return (200, replace(self, tokens=frozenset())) if token in self.tokens else (403, self)


class Account:
    def __init__(self):
        self.worlds, self.failures = {World()}, 0

    def saw(self, answer, what, *arguments):
        """Takes an answer to an operation, None for a failure; false if the service may not give it."""
        outcomes = [(getattr(world, what)(*arguments), world) for world in self.worlds]
        status = answer[0] if isinstance(answer, tuple) else answer
        if answer is None:  # it may have been done or not
            self.worlds |= {after for (_, after), _ in outcomes}
        elif answer == FAILED:  # the brake: refused, not done
            return self.failures >= FAILURES
        else:
            self.worlds = {after for (told, after), _ in outcomes if told == answer}
        self.failures += status in (None, WRONG, NO_USER, IN_USE)
        return bool(self.worlds)
