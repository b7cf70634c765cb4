-- Every key begins with the account: ids stay small for ever, and the account is what a larger database is
-- divided by. Times are seconds since 1970, truth values 0 or 1. The schema of a newer version adds a file.
CREATE TABLE account (
    account_id BIGINT NOT NULL PRIMARY KEY,
    name TEXT NOT NULL,
    password_hash TEXT NOT NULL,
    version BIGINT NOT NULL,
    next_set_id BIGINT NOT NULL,
    next_goal_id BIGINT NOT NULL,
    created_at BIGINT NOT NULL
) WITHOUT ROWID;

CREATE TABLE login (
    login_digest TEXT NOT NULL PRIMARY KEY,
    account_id BIGINT NOT NULL REFERENCES account (account_id)
) WITHOUT ROWID;

CREATE INDEX login_of_account ON login (account_id);

CREATE TABLE area (
    account_id BIGINT NOT NULL REFERENCES account (account_id),
    area_id BIGINT NOT NULL,
    name TEXT NOT NULL,
    color TEXT NOT NULL,
    value INTEGER NOT NULL,
    PRIMARY KEY (account_id, area_id)
) WITHOUT ROWID;

CREATE TABLE goal_set (
    account_id BIGINT NOT NULL REFERENCES account (account_id),
    set_id BIGINT NOT NULL,
    name TEXT NOT NULL,
    deleted_at BIGINT,
    PRIMARY KEY (account_id, set_id)
) WITHOUT ROWID;

CREATE TABLE goal (
    account_id BIGINT NOT NULL,
    goal_id BIGINT NOT NULL,
    set_id BIGINT NOT NULL,
    area_id BIGINT NOT NULL,
    name TEXT NOT NULL,
    priority INTEGER NOT NULL,
    checked INTEGER NOT NULL,
    deleted_at BIGINT,
    PRIMARY KEY (account_id, goal_id),
    FOREIGN KEY (account_id, set_id) REFERENCES goal_set (account_id, set_id),
    FOREIGN KEY (account_id, area_id) REFERENCES area (account_id, area_id)
);

CREATE INDEX goal_of_place ON goal (account_id, set_id, area_id, goal_id);

CREATE INDEX goal_deleted ON goal (account_id, deleted_at);
