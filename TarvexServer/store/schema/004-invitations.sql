-- Whoever knows the code of an invitation may make one account. Only a hash of it is kept, until it is used.
CREATE TABLE invitation (
    code_hash TEXT NOT NULL PRIMARY KEY,
    expires_at BIGINT NOT NULL
);
