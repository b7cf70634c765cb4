-- Whoever knows the code of an invitation may make one account. Only a hash of it is kept, until it is used.
CREATE TABLE invitation (
    code_hash TEXT NOT NULL PRIMARY KEY,
    expires_at BIGINT NOT NULL
);

-- How many accounts there are. One row.
CREATE TABLE account_count (accounts BIGINT NOT NULL);

INSERT INTO account_count (accounts) SELECT COUNT(*) FROM account;
