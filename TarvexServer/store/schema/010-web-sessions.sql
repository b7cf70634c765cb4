-- Who is signed in with a browser. Of what the browser holds only a hash is kept; a session ends with the version of
-- the account under which it began.
CREATE TABLE web_session (
    account_id BIGINT NOT NULL REFERENCES account (account_id),
    token_hash TEXT NOT NULL,
    account_version BIGINT NOT NULL,
    began_at BIGINT NOT NULL,
    used_at BIGINT NOT NULL,
    PRIMARY KEY (account_id, token_hash)
);

CREATE INDEX web_session_used ON web_session (used_at);

-- When its owner closed the account, which goes for good after a while.
ALTER TABLE account ADD COLUMN closed_at BIGINT;

CREATE INDEX account_closed ON account (closed_at) WHERE closed_at IS NOT NULL;
